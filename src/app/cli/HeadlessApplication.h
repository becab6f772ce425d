#pragma once

#include "app/AppController.h"
#include "app/cli/TimeArgument.h"
#include "platform/memory/InMemoryPlatform.h"
#include "platform/store/PlistPreferencesStore.h"

class QTextStream;

// The real controller, launched as the application launches it, on the in-memory platform
// and the user's real settings: what the menu, title and copy commands ask.
class HeadlessApplication
{
public:
    explicit HeadlessApplication(const TimeOptions &options);

    AppController &controller() { return m_controller; }
    InMemoryPlatform &platform() { return m_platform; }

    // The title's next refresh as of the clock's time: its text, or nothing when the refresh
    // would leave the title as it was (a title format name that names no format).
    std::optional<QString> refreshTitle();

    // What went wrong with the settings file (a damaged one reads as the defaults), in one
    // line; the desktop side keeps quiet about it, the command line does not.
    void reportStoreProblem(QTextStream &err);

private:
    PlistPreferencesStore m_store;
    InMemoryPlatform m_platform;
    Platform m_services = m_platform.platform();
    AppController m_controller{m_services, m_platform.chooserInterface(), nullptr};
};
