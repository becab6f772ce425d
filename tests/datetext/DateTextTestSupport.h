#pragma once

#include "datetext/DateText.h"
#include "platform/memory/InMemoryPlatform.h"
#include "support/QtPrinters.h"

#include <QByteArray>
#include <QList>
#include <QPair>

#include <gtest/gtest.h>

#include <cstdlib>
#include <ostream>

// Absolute time of a Unix time in seconds.
inline AbsoluteTime FromUnix(double unixSeconds)
{
    return unixSeconds - kAbsoluteTimeIntervalSince1970;
}

// 2006-03-10 14:31:47 EST, a Friday.
inline constexpr double kFridayUnix = 1142019107;

// Sets environment variables for the life of the object and puts the old values back, together
// with the process-wide date state the renderers read.
class ScopedDateEnvironment
{
public:
    ScopedDateEnvironment() : m_selected(g_selectedDateTime), m_dictionary(gUserDefaultsDictionary)
    {}
    ~ScopedDateEnvironment()
    {
        for (auto it = m_saved.crbegin(); it != m_saved.crend(); ++it) {
            if (it->second.isNull())
                unsetenv(it->first.constData());
            else
                setenv(it->first.constData(), it->second.constData(), 1);
        }
        g_selectedDateTime = m_selected;
        gUserDefaultsDictionary = m_dictionary;
    }
    ScopedDateEnvironment(const ScopedDateEnvironment &) = delete;
    ScopedDateEnvironment &operator=(const ScopedDateEnvironment &) = delete;

    // A null value unsets the variable.
    void set(const char *name, const char *value)
    {
        const char *old = std::getenv(name);
        m_saved.append({QByteArray(name), old ? QByteArray(old) : QByteArray()});
        if (value)
            setenv(name, value, 1);
        else
            unsetenv(name);
    }
    // The locale through LC_ALL, the way a desktop session sets it, and the zone through TZ.
    void setLocaleAndZone(const char *locale, const char *zone)
    {
        set("LC_ALL", locale);
        set("TZ", zone);
    }

private:
    QList<QPair<QByteArray, QByteArray>> m_saved;
    AbsoluteTime m_selected;
    std::optional<QVariantMap> m_dictionary;
};

// English in New York, as the tests' environment pins it, put back after the test.
class NewYorkTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        m_environment.setLocaleAndZone("en_US.UTF-8", "America/New_York");
        g_selectedDateTime = 0;
    }
    ScopedDateEnvironment m_environment;
};

// A calendar format at a Unix time in an explicit zone, with a locale dictionary or without
// one (English names).
inline QString RenderCalendarFormat(const QString &format, double unixSeconds,
                                    const char *zone = "America/New_York",
                                    const QVariantMap *locale = nullptr)
{
    return DescriptionWithCalendarFormat(MakeCalendarDate(FromUnix(unixSeconds), QTimeZone(zone)),
                                         format, locale);
}
