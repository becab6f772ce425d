#include "app/cli/MenuCommand.h"

#include "app/AppController.h"
#include "app/cli/TerminalText.h"
#include "app/cli/TimeArgument.h"
#include "datetext/DateText.h"
#include "platform/memory/InMemoryPlatform.h"
#include "platform/store/PlistPreferencesStore.h"
#include "statusmenu/CopyActions.h"
#include "statusmenu/StatusMenu.h"

namespace {

// The real controller, launched as the application launches it, on the in-memory platform
// and the user's real settings.
class HeadlessApplication
{
public:
    explicit HeadlessApplication(const TimeOptions &options)
        : m_platform(options.now.value_or(SystemClock().currentAbsoluteTime()), &m_store)
    {
        m_platform.userDefaults.setRegistrationProvider(LocaleDefaultsRegistration,
                                                        LocaleDefaultsKeys());
        m_controller.awakeFromNib();
        m_controller.applicationWillFinishLaunching();
        // As if the moment had been picked in the chooser; the reference instant itself means
        // nothing is picked.
        g_selectedDateTime = options.at.value_or(0.0);
    }

    AppController &controller() { return m_controller; }
    InMemoryPlatform &platform() { return m_platform; }

private:
    PlistPreferencesStore m_store;
    InMemoryPlatform m_platform;
    Platform m_services = m_platform.platform();
    AppController m_controller{m_services, m_platform.chooserInterface(), nullptr};
};

bool TakeOptionsOnly(QStringList &args, TimeOptions &options, QTextStream &err)
{
    QString error;
    if (!TakeTimeOptions(args, options, error)) {
        PrintCommandLineError(err, error);
        return false;
    }
    return true;
}

bool NoArgumentsLeft(const QStringList &args, QTextStream &err)
{
    if (args.isEmpty())
        return true;
    PrintCommandLineError(err, QStringLiteral("unexpected argument '%1'").arg(args.first()));
    return false;
}

} // namespace

int RunMenuCommand(const QStringList &arguments, QTextStream &out, QTextStream &err)
{
    QStringList args = arguments;
    TimeOptions options;
    if (!TakeOptionsOnly(args, options, err) || !NoArgumentsLeft(args, err))
        return 2;
    HeadlessApplication app(options);
    // What the user sees: the menu as rebuilt when it is about to open.
    app.platform().statusItem()->openMenu();
    // A custom format can hold anything, and the rows are fields split by tabs.
    for (const QString &line :
         DescribeMenu(*app.controller().statusMenu().menu(), WithoutControlCharacters))
        out << line << '\n';
    return 0;
}

int RunTitleCommand(const QStringList &arguments, QTextStream &out, QTextStream &err)
{
    QStringList args = arguments;
    TimeOptions options;
    if (!TakeOptionsOnly(args, options, err) || !NoArgumentsLeft(args, err))
        return 2;
    HeadlessApplication app(options);
    InMemoryStatusItem &item = *app.platform().statusItem();
    app.controller().itemTitleTimerAction(app.controller().statusMenu().itemTitleTimer());
    // A refresh that would leave the title as it was prints nothing.
    if (item.titleSetCount() > 0)
        out << WithoutControlCharacters(item.title()) << '\n';
    return 0;
}

int RunCopyCommand(const QStringList &arguments, QTextStream &out, QTextStream &err)
{
    QStringList args = arguments;
    TimeOptions options;
    if (!TakeOptionsOnly(args, options, err))
        return 2;

    MenuItem sender;
    const qsizetype formatAt = args.indexOf(QStringLiteral("--format"));
    if (formatAt >= 0) {
        if (formatAt + 1 >= args.size()) {
            PrintCommandLineError(err, u"--format needs a format string");
            return 2;
        }
        sender.action = QStringLiteral("customDateFormatter:");
        sender.toolTip = args.at(formatAt + 1);
        args.remove(formatAt, 2);
    } else if (!args.isEmpty()) {
        const QString name = args.takeFirst();
        sender.action = CopyActionForMenuName(name);
        if (sender.action.isEmpty()) {
            PrintCommandLineError(
                err, QStringLiteral("not a menu format name: '%1' (try 'Numerical Date' or "
                                    "--format STRING)")
                         .arg(name));
            return 2;
        }
    } else {
        PrintCommandLineError(err, u"copy needs a menu format name or --format STRING");
        return 2;
    }
    if (!NoArgumentsLeft(args, err))
        return 2;

    HeadlessApplication app(options);
    sender.title = sender.action;
    app.controller().performAction(sender.action, sender);
    const std::optional<QByteArray> copied = app.platform().clipboard.contents();
    if (!copied) {
        PrintCommandLineError(err, u"the text cannot be produced; nothing was copied");
        return 1;
    }
    out << QString::fromUtf8(*copied) << '\n';
    return 0;
}
