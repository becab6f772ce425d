#include "app/cli/TitleFollower.h"

#include "datetext/DateText.h"
#include "platform/dbus/HoraloBusClient.h"
#include "statusmenu/StatusMenu.h"

#include <QCoreApplication>
#include <QDateTime>

#include <cerrno>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// A tick lands this long after the second turns, so the second it renders is the new one.
const int kPastTheSecondMs = 3;

} // namespace

TitleFollower::TitleFollower(Format format, QTextStream &out, HoraloBusClient *client,
                             LocalTitle localTitle)
    : m_format(format), m_out(out), m_client(client), m_localTitle(std::move(localTitle))
{
    m_tick.setSingleShot(true);
    m_tick.setTimerType(Qt::PreciseTimer);
    connect(&m_tick, &QTimer::timeout, this, &TitleFollower::tick);
}

TitleFollower::~TitleFollower() = default;

bool TitleFollower::inputCanClose()
{
    struct stat info;
    if (fstat(STDIN_FILENO, &info) != 0)
        return false;
    return S_ISFIFO(info.st_mode) || S_ISSOCK(info.st_mode) || isatty(STDIN_FILENO);
}

namespace {

bool IsPipeOrSocket(int fd)
{
    struct stat info;
    return fstat(fd, &info) == 0 && (S_ISFIFO(info.st_mode) || S_ISSOCK(info.st_mode));
}

} // namespace

void TitleFollower::start()
{
    if (inputCanClose()) {
        m_input = std::make_unique<QSocketNotifier>(STDIN_FILENO, QSocketNotifier::Read);
        connect(m_input.get(), &QSocketNotifier::activated, this, &TitleFollower::readInput);
    }
    // A bar that goes away may leave our input open (it was never the bar's, or the bar's
    // children share it), and a title that changes once a day would not hit the closed pipe for
    // hours. The poller reports a pipe or socket whose reader is gone as an error on our end,
    // which wakes a read notifier, so the follower ends with its reader.
    if (IsPipeOrSocket(STDOUT_FILENO)) {
        m_output = std::make_unique<QSocketNotifier>(STDOUT_FILENO, QSocketNotifier::Read);
        connect(m_output.get(), &QSocketNotifier::activated, this, &TitleFollower::checkOutput);
    }
    if (m_client) {
        // Watch first, so no change falls between the first read and the subscription.
        m_client->watch();
        connect(m_client, &HoraloBusClient::titleChanged, this, &TitleFollower::titleReceived);
        connect(m_client, &HoraloBusClient::runningChanged, this, &TitleFollower::runningChanged);
    }
    if (m_client && m_client->isRunning())
        followRunning();
    else
        renderHere();
}

void TitleFollower::readInput()
{
    // What a bar writes to us (i3blocks sends clicks) is not ours to act on; the end of it is.
    char buffer[4096];
    const ssize_t got = ::read(STDIN_FILENO, buffer, sizeof buffer);
    if (got == 0 || (got < 0 && errno != EINTR && errno != EAGAIN)) {
        m_input->setEnabled(false);
        QCoreApplication::exit(0);
    }
}

void TitleFollower::checkOutput()
{
    pollfd output{STDOUT_FILENO, 0, 0};
    if (::poll(&output, 1, 0) == 1 && (output.revents & (POLLERR | POLLHUP | POLLNVAL))) {
        m_output->setEnabled(false);
        QCoreApplication::exit(0);
        return;
    }
    // Something readable on a socket we only write to (its peer wrote back): not ours to read,
    // and left unread it would wake us at every turn of the loop.
    m_output->setEnabled(false);
}

void TitleFollower::runningChanged(bool running)
{
    if (running)
        followRunning();
    else
        renderHere();
}

void TitleFollower::followRunning()
{
    m_followingRunning = true;
    const HoraloBusClient::Reply title = m_client->title();
    if (!title.ok) {
        // Gone again, or not answering yet: render here until it is back.
        renderHere();
        return;
    }
    m_title = title.value;
    // The plain line changes only with the title; the JSON line's tooltip tells the minute.
    if (m_format == Format::Json)
        scheduleTick();
    else
        m_tick.stop();
    // The running application has not refreshed its title yet: its first tick will say it.
    if (!m_title.isEmpty())
        print(stateWithTitle(m_title, runningPickedMoment()));
}

void TitleFollower::renderHere()
{
    m_followingRunning = false;
    tick();
}

void TitleFollower::titleReceived(const QString &title)
{
    if (!m_followingRunning)
        return;
    m_title = title;
    print(stateWithTitle(m_title, m_format == Format::Json ? runningPickedMoment()
                                                           : std::optional<AbsoluteTime>()));
}

void TitleFollower::tick()
{
    if (m_followingRunning) {
        if (!m_title.isEmpty())
            print(stateWithTitle(m_title, runningPickedMoment()));
    } else if (const std::optional<QString> title = m_localTitle()) {
        m_title = *title;
        print(stateWithTitle(m_title, std::nullopt));
    }
    scheduleTick();
}

void TitleFollower::scheduleTick()
{
    const qint64 now = QDateTime::currentMSecsSinceEpoch();
    m_tick.start(int(1000 - now % 1000) + kPastTheSecondMs);
}

std::optional<AbsoluteTime> TitleFollower::runningPickedMoment() const
{
    const HoraloBusClient::Reply reply = m_client->pickedMoment();
    if (!reply.ok || reply.value.isEmpty())
        return std::nullopt;
    const QDateTime moment = QDateTime::fromString(reply.value, Qt::ISODate);
    if (!moment.isValid())
        return std::nullopt;
    return AbsoluteTimeFromDate(moment);
}

StatusBarState TitleFollower::stateWithTitle(const QString &title,
                                             std::optional<AbsoluteTime> picked) const
{
    StatusBarState state;
    state.title = title;
    if (m_format == Format::Plain)
        return state;
    state.tooltip = ItIsNowLine(m_clock);
    if (picked) {
        // The lines read the chooser's moment from where every renderer reads it.
        const AbsoluteTime kept = g_selectedDateTime;
        g_selectedDateTime = *picked;
        state.tooltip += QLatin1Char('\n') + DaysToLine(m_clock);
        g_selectedDateTime = kept;
        state.picked = true;
    }
    return state;
}

void TitleFollower::print(const StatusBarState &state)
{
    const QString line =
        m_format == Format::Json ? JsonStatusBarLine(state) : PlainStatusBarLine(state);
    if (line == m_lastLine)
        return;
    m_lastLine = line;
    m_out << line << '\n';
    m_out.flush();
}
