#pragma once

#include "TestSupport.h"
#include "app/cli/DefaultsCommand.h"
#include "platform/store/PlistPreferencesStore.h"

#include <QTextStream>

#include <gtest/gtest.h>

// Runs `horalo defaults` against a fresh, private settings file: XDG_CONFIG_HOME points into
// the test's scratch space for the length of each test.
class DefaultsCommandTest : public ::testing::Test
{
protected:
    struct Result
    {
        int status;
        QString out;
        QString err;
    };

    void SetUp() override
    {
        TestApplication();
        m_hadConfig = qEnvironmentVariableIsSet("XDG_CONFIG_HOME");
        m_savedConfig = qgetenv("XDG_CONFIG_HOME");
        qputenv("XDG_CONFIG_HOME", QFile::encodeName(m_dir.path() + QStringLiteral("/config")));
    }

    void TearDown() override
    {
        if (m_hadConfig)
            qputenv("XDG_CONFIG_HOME", m_savedConfig);
        else
            qunsetenv("XDG_CONFIG_HOME");
    }

    static Result run(const QStringList &args)
    {
        QString out;
        QString err;
        QTextStream outStream(&out);
        QTextStream errStream(&err);
        const int status = RunDefaultsCommand(args, outStream, errStream);
        outStream.flush();
        errStream.flush();
        return {status, out, err};
    }

    static QVariant stored(const QString &key)
    {
        return PlistPreferencesStore().copyAppValue(key, AppIdentifier);
    }

    QTemporaryDir m_dir = ScratchDirectory();
    QByteArray m_savedConfig;
    bool m_hadConfig = false;
};
