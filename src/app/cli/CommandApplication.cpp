#include "app/cli/CommandApplication.h"

CommandApplication::CommandApplication()
{
    if (!QCoreApplication::instance())
        m_application = std::make_unique<QCoreApplication>(m_argc, m_argv);
}
