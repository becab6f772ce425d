#include "app/cli/SessionCommands.h"

#include "app/cli/CommandApplication.h"
#include "app/cli/CommandParser.h"
#include "app/cli/HeadlessApplication.h"
#include "app/cli/TerminalText.h"
#include "app/cli/TitleFollower.h"
#include "platform/dbus/HoraloBusClient.h"
#include "platform/dbus/HoraloBusNames.h"

#include <QCoreApplication>

#include <memory>

using namespace Qt::StringLiterals;

namespace {

const QString kNotRunning = u"no Horalo is running in this session (start it with 'horalo')"_s;

} // namespace

int RunShowMenuCommand(const QStringList &args, QTextStream &out, QTextStream &err)
{
    CommandParser parser({u"show-menu"_s},
                         u"Opens the running Horalo's menu at the pointer, as a click on its "
                         u"item does: for a status bar's on-click or a key binding."_s);
    if (const std::optional<int> status = parser.parse(args, out, err))
        return *status;
    const CommandApplication application;
    const HoraloBusClient client;
    if (!client.isRunning()) {
        PrintCommandLineError(err, kNotRunning);
        return 1;
    }
    const HoraloBusClient::Reply reply = client.showMenu(-1, -1);
    if (!reply.ok) {
        PrintCommandLineError(err, u"Horalo did not open its menu: %1"_s.arg(reply.errorMessage));
        return 1;
    }
    return 0;
}

int CopyThroughRunningHoralo(const QString &name, QTextStream &out, QTextStream &err)
{
    const CommandApplication application;
    const HoraloBusClient client;
    if (!client.isRunning()) {
        PrintCommandLineError(err, kNotRunning);
        return 1;
    }
    const HoraloBusClient::Reply reply = client.copy(name);
    if (reply.ok) {
        out << reply.value << '\n';
        return 0;
    }
    PrintCommandLineError(err, reply.errorMessage);
    return reply.errorName == HoraloBus::UnknownFormatError ? 2 : 1;
}

int FollowTitle(bool json, QTextStream &out, QTextStream &)
{
    const CommandApplication application;
    std::unique_ptr<HoraloBusClient> client;
    if (QDBusConnection::sessionBus().isConnected())
        client = std::make_unique<HoraloBusClient>();

    // Without a running Horalo, the title is rendered here from the same settings.
    HeadlessApplication headless(TimeOptions{});
    const SystemClock clock;
    TitleFollower follower(json ? TitleFollower::Format::Json : TitleFollower::Format::Plain, out,
                           client.get(), [&headless, &clock] {
                               headless.platform().clock.set(clock.currentAbsoluteTime());
                               return headless.refreshTitle();
                           });
    follower.start();
    return QCoreApplication::exec();
}
