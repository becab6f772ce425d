#pragma once

#include <QCoreApplication>

#include <memory>

// The application object a command needs for the session bus, made only when the process has
// none yet (the tests make their own).
class CommandApplication
{
public:
    CommandApplication();
    CommandApplication(const CommandApplication &) = delete;
    CommandApplication &operator=(const CommandApplication &) = delete;

private:
    int m_argc = 1;
    char m_name[7] = "horalo";
    char *m_argv[2] = {m_name, nullptr};
    std::unique_ptr<QCoreApplication> m_application;
};
