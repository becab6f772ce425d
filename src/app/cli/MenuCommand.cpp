#include "app/cli/MenuCommand.h"

#include "app/cli/CommandParser.h"
#include "app/cli/DescribeMenu.h"
#include "app/cli/HeadlessApplication.h"
#include "app/cli/SessionCommands.h"
#include "app/cli/StatusBarLine.h"
#include "app/cli/TerminalText.h"
#include "datetext/CopyActions.h"
#include "datetext/DateText.h"
#include "statusmenu/StatusMenu.h"

using namespace Qt::StringLiterals;

namespace {

int Fail(QTextStream &err, const QString &message)
{
    PrintCommandLineError(err, message);
    return 2;
}

} // namespace

int RunMenuCommand(const QStringList &args, QTextStream &out, QTextStream &err)
{
    CommandParser parser({u"menu [options]"_s},
                         u"Prints the menu as it would open now, one entry a line: its text, its "
                         u"action and its tool tip, split by tabs; \"-\" for a separator."_s);
    parser.addTimeOptions();
    if (const std::optional<int> status = parser.parse(args, out, err))
        return *status;
    HeadlessApplication app(parser.time());
    // What the user sees: the menu as rebuilt when it is about to open.
    app.platform().statusItem()->openMenu();
    // A custom format can hold anything, and the rows are fields split by tabs.
    for (const QString &line :
         DescribeMenu(*app.controller().statusMenu().menu(), WithoutControlCharacters))
        out << line << '\n';
    app.reportStoreProblem(err);
    return 0;
}

int RunTitleCommand(const QStringList &args, QTextStream &out, QTextStream &err)
{
    CommandParser parser(
        {u"title [options]"_s, u"title --follow [--json]"_s},
        u"Prints what the status item's title shows now. With --follow, prints it again each "
        u"time it changes, following the running Horalo (and the moment picked in its chooser) "
        u"or, when none runs, the settings; it stops when standard input closes."_s);
    parser.addOption({u"follow"_s, u"Keep printing the title, a line each time it changes."_s});
    parser.addOption({u"json"_s, u"Print JSON objects for Waybar (text, tooltip, class)."_s});
    parser.addTimeOptions();
    if (const std::optional<int> status = parser.parse(args, out, err))
        return *status;
    const bool json = parser.isSet(u"json"_s);
    if (parser.isSet(u"follow"_s)) {
        if (parser.time().now || parser.time().at)
            return Fail(err, u"--follow shows the live title; it takes no --now or --at"_s);
        return FollowTitle(json, out, err);
    }

    HeadlessApplication app(parser.time());
    // A refresh that would leave the title as it was prints nothing.
    const std::optional<QString> title = app.refreshTitle();
    app.reportStoreProblem(err);
    if (!title)
        return 0;
    if (!json) {
        out << PlainStatusBarLine({*title, {}, false}) << '\n';
        return 0;
    }
    const Clock &clock = app.platform().clock;
    StatusBarState state{*title, ItIsNowLine(clock), g_selectedDateTime != 0.0};
    if (state.picked)
        state.tooltip += QLatin1Char('\n') + DaysToLine(clock);
    out << JsonStatusBarLine(state) << '\n';
    return 0;
}

int RunCopyCommand(const QStringList &args, QTextStream &out, QTextStream &err)
{
    CommandParser parser(
        {u"copy [options] NAME"_s, u"copy [options] --format FORMAT"_s},
        u"Prints the text that the menu entry of format NAME copies (or a custom FORMAT's). With "
        u"--clipboard, the running Horalo puts it on the clipboard, for its moment."_s);
    parser.addArgument(u"NAME"_s,
                       u"A menu format name, such as \"Numerical Date\"; quote names with "
                       u"spaces."_s);
    parser.addOption({u"format"_s, u"Copy this custom format instead."_s, u"FORMAT"_s});
    parser.addOption(
        {u"clipboard"_s, u"Have the running Horalo copy the text to the clipboard."_s});
    parser.addTimeOptions();
    if (const std::optional<int> status = parser.parse(args, out, err))
        return *status;

    QStringList positional = parser.positional();
    std::optional<MenuItem> entry;
    QString busName; // what the running application's Copy takes
    if (parser.isSet(u"format"_s)) {
        if (!positional.isEmpty())
            return Fail(err, u"give either a format NAME or --format STRING, not both"_s);
        busName = QString(kCustomFormatPrefix) + parser.value(u"format"_s);
        entry = CopyEntryForName(busName);
    } else if (!positional.isEmpty()) {
        busName = positional.takeFirst();
        entry = CopyEntryForMenuName(busName);
        if (!entry) {
            return Fail(err, u"not a menu format name: '%1' (try 'Numerical Date' or "
                             u"--format STRING)"_s.arg(busName));
        }
        if (!positional.isEmpty())
            return Fail(err, u"unexpected argument '%1'"_s.arg(positional.first()));
    } else {
        return Fail(err, u"copy needs a menu format name or --format STRING"_s);
    }

    if (parser.isSet(u"clipboard"_s)) {
        if (parser.time().now || parser.time().at) {
            return Fail(err, u"--clipboard copies the running Horalo's moment; it takes no "
                             u"--now or --at"_s);
        }
        return CopyThroughRunningHoralo(busName, out, err);
    }

    HeadlessApplication app(parser.time());
    app.controller().performAction(entry->action, *entry);
    app.reportStoreProblem(err);
    const std::optional<QByteArray> copied = app.platform().clipboard.contents();
    if (!copied) {
        PrintCommandLineError(err, u"the text cannot be produced; nothing was copied");
        return 1;
    }
    out << QString::fromUtf8(*copied) << '\n';
    return 0;
}
