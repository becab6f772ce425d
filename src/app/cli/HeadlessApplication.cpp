#include "app/cli/HeadlessApplication.h"

#include "app/cli/TerminalText.h"
#include "datetext/DateText.h"
#include "datetext/LocaleDefaults.h"

HeadlessApplication::HeadlessApplication(const TimeOptions &options)
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

std::optional<QString> HeadlessApplication::refreshTitle()
{
    InMemoryStatusItem &item = *m_platform.statusItem();
    const int setBefore = item.titleSetCount();
    m_controller.itemTitleTimerAction(m_controller.statusMenu().itemTitleTimer());
    if (item.titleSetCount() == setBefore)
        return std::nullopt;
    return item.title();
}

void HeadlessApplication::reportStoreProblem(QTextStream &err)
{
    const QString problem = m_store.takeProblem();
    if (!problem.isEmpty())
        PrintCommandLineError(err, problem);
}
