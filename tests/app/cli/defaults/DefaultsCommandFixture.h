#pragma once

#include "TestSupport.h"
#include "app/cli/CommandResult.h"
#include "app/cli/DefaultsCommand.h"
#include "platform/store/PlistPreferencesStore.h"

// Runs `horalo defaults` against a fresh, private settings file: XDG_CONFIG_HOME points into
// the test's scratch space for the length of each test.
class DefaultsCommandTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        TestApplication();
        if (qEnvironmentVariableIsSet("XDG_CONFIG_HOME"))
            m_savedConfig = qgetenv("XDG_CONFIG_HOME");
        qputenv("XDG_CONFIG_HOME", QFile::encodeName(m_dir.path() + QStringLiteral("/config")));
    }
    void TearDown() override
    {
        if (m_savedConfig)
            qputenv("XDG_CONFIG_HOME", *m_savedConfig);
        else
            qunsetenv("XDG_CONFIG_HOME");
    }

    static CommandResult run(const QStringList &args)
    {
        return RunCommand(RunDefaultsCommand, args);
    }
    static QVariant stored(const QString &key)
    {
        return PlistPreferencesStore().copyAppValue(key, AppIdentifier);
    }

    QTemporaryDir m_dir = ScratchDirectory();
    std::optional<QByteArray> m_savedConfig;
};
