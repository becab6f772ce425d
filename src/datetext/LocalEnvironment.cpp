#include "datetext/LocalEnvironment.h"

#include "datetext/IcuText.h"

#include <QByteArrayView>

#include <cmath>
#include <cstdlib>

namespace {
// ICU's own calendar limit; beyond it no formatter computes fields.
constexpr double kMaxUnixMilliseconds = 183882168921600000.0;
} // namespace

QByteArray CurrentLocaleName()
{
    QByteArrayView value;
    for (const char *variable : {"LC_ALL", "LC_TIME", "LANG"}) {
        const char *text = std::getenv(variable);
        if (text && *text) {
            value = QByteArrayView(text);
            break;
        }
    }
    // language[_territory][.codeset][@modifier]
    for (qsizetype i = 0; i < value.size(); ++i) {
        if (value.at(i) == '.' || value.at(i) == '@') {
            value = value.first(i);
            break;
        }
    }
    if (value.isEmpty() || value == "C" || value == "POSIX")
        return QByteArrayLiteral("en_US");
    return value.toByteArray();
}

std::optional<icu::Locale> CurrentIcuLocale()
{
    icu::Locale locale(CurrentLocaleName().constData());
    if (locale.isBogus())
        return std::nullopt;
    return locale;
}

std::unique_ptr<icu::TimeZone> CurrentIcuTimeZone()
{
    // detectHostTimeZone() reads TZ and the system's zone afresh on every call, unlike
    // TimeZone::createDefault(), which returns the zone ICU cached at its first use.
    std::unique_ptr<icu::TimeZone> zone(icu::TimeZone::detectHostTimeZone());
    if (!zone)
        zone.reset(icu::TimeZone::getGMT()->clone());
    return zone;
}

QTimeZone QTimeZoneForIcuZone(const icu::TimeZone &zone, AbsoluteTime instant)
{
    icu::UnicodeString id;
    zone.getID(id);
    QTimeZone qtZone(FromIcu(id).toUtf8());
    if (qtZone.isValid())
        return qtZone;
    const std::optional<qint64> ms = UnixMillisecondsFromAbsoluteTime(instant);
    return QTimeZone(IcuOffsetFromUtc(zone, ms.value_or(0)));
}

std::optional<qint64> UnixMillisecondsFromAbsoluteTime(AbsoluteTime instant)
{
    const double ms = std::round((instant + kAbsoluteTimeIntervalSince1970) * 1000.0);
    if (!std::isfinite(ms) || std::fabs(ms) > kMaxUnixMilliseconds)
        return std::nullopt;
    return static_cast<qint64>(ms);
}

qint32 IcuOffsetFromUtc(const icu::TimeZone &zone, qint64 unixMilliseconds)
{
    int32_t rawOffset = 0;
    int32_t dstOffset = 0;
    UErrorCode status = U_ZERO_ERROR;
    zone.getOffset(static_cast<UDate>(unixMilliseconds), false, rawOffset, dstOffset, status);
    if (U_FAILURE(status))
        return 0;
    return (rawOffset + dstOffset) / 1000;
}
