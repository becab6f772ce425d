#pragma once

// A Wayland compositor reduced to a seat and the data-control globals, serving on a socket of its
// own from a thread of its own, so that a writer in the test's thread can wait on it. Tests read
// what clients did (sources, offered types, the selection) and act as other programs would:
// paste the selection, or take the clipboard away.

#include <QByteArray>
#include <QStringList>

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

struct wl_display;
struct wl_event_source;
struct wl_resource;

class FakeCompositor
{
public:
    struct Globals
    {
        bool seat = true;
        bool ext = true;
        bool wlr = true;
    };

    // What a client's data source went through.
    struct SourceRecord
    {
        QByteArray protocol; // the manager's interface name it came from
        QStringList types;
        bool destroyed = false;
        wl_resource *resource = nullptr;
    };

    FakeCompositor(const QByteArray &socketName, Globals globals);
    ~FakeCompositor();

    int sourceCount() const;
    SourceRecord source(int index) const;
    // The index of the source that holds the selection; -1 for none.
    int selectionIndex() const;

    // Asks the selection's owner for its text in that type, as a pasting program does; returns
    // the pipe's read end (non-blocking), or -1 when nothing holds the selection.
    int requestPaste(const QByteArray &mimeType);
    // The same through a pipe that is already full, and is never read.
    int requestStalledPaste(const QByteArray &mimeType);
    // Another program takes the clipboard: the owner is told its source is cancelled.
    void takeSelection();

    // Runs f on the compositor's thread and waits for it.
    void runOnServer(const std::function<void()> &f);

    // Called on the compositor's thread.
    struct Handlers;

private:
    void serve();
    int postSend(const QByteArray &mimeType, int writeFd);

    wl_display *m_display = nullptr;
    wl_event_source *m_wakeSource = nullptr;
    int m_wakeFd = -1;
    std::thread m_thread;
    std::atomic<bool> m_stop{false};

    mutable std::mutex m_mutex;
    std::vector<std::function<void()>> m_queue;
    std::vector<SourceRecord> m_sources;
    int m_selection = -1;

    friend struct Handlers;
};
