#pragma once

#include "app/cli/StatusBarLine.h"
#include "platform/Clock.h"

#include <QObject>
#include <QSocketNotifier>
#include <QTextStream>
#include <QTimer>

#include <functional>
#include <memory>
#include <optional>

class HoraloBusClient;

// `horalo title --follow`: prints the title as a line each time it changes, at once and then
// as it ticks, until standard input closes or nobody reads standard output any more. While a Horalo
// runs in the session the lines follow its title (so a moment picked in its chooser shows); while
// none runs, the title is rendered here every second, on the second, from the same settings.
class TitleFollower final : public QObject
{
    Q_OBJECT
public:
    enum class Format
    {
        Plain,
        Json,
    };
    // The title as the running application would show it now, or nothing when the title would
    // keep whatever it showed (a title format name that names no format).
    using LocalTitle = std::function<std::optional<QString>()>;

    // client may be null (no session bus): the title is then always rendered here.
    TitleFollower(Format format, QTextStream &out, HoraloBusClient *client, LocalTitle localTitle);
    ~TitleFollower() override;

    // Prints the first line and starts following. Ends the event loop with status 0 when
    // standard input closes, or when standard output is a pipe or socket whose reader is gone.
    void start();

    // Whether standard input is something that can close under us (a pipe, a socket, a
    // terminal) rather than /dev/null or a file, which would end the output at once.
    static bool inputCanClose();

private:
    void followRunning();
    void renderHere();
    void tick();
    void scheduleTick();
    void runningChanged(bool running);
    void titleReceived(const QString &title);
    void print(const StatusBarState &state);
    StatusBarState stateWithTitle(const QString &title, std::optional<AbsoluteTime> picked) const;
    std::optional<AbsoluteTime> runningPickedMoment() const;
    void readInput();
    void checkOutput();

    Format m_format;
    QTextStream &m_out;
    HoraloBusClient *m_client;
    LocalTitle m_localTitle;
    SystemClock m_clock;
    QTimer m_tick;
    std::unique_ptr<QSocketNotifier> m_input;
    std::unique_ptr<QSocketNotifier> m_output;
    bool m_followingRunning = false;
    QString m_title;
    std::optional<QString> m_lastLine;
};
