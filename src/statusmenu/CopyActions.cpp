#include "statusmenu/CopyActions.h"

#include "datetext/DateText.h"

#include <QStringList>

namespace {

struct StyledCopyAction
{
    const char *action;
    DateFormatterStyle dateStyle;
    DateFormatterStyle timeStyle;
};

constexpr StyledCopyAction kStyledCopyActions[] = {
    {"shortDate:", kShortStyle, kNoStyle},        {"mediumDate:", kMediumStyle, kNoStyle},
    {"longDate:", kLongStyle, kNoStyle},          {"fullDate:", kFullStyle, kNoStyle},
    {"shortDateTime:", kShortStyle, kShortStyle}, {"mediumDateTime:", kMediumStyle, kMediumStyle},
    {"longDateTime:", kLongStyle, kLongStyle},    {"fullDateTime:", kFullStyle, kFullStyle},
    {"shortTime:", kNoStyle, kShortStyle},        {"mediumTime:", kNoStyle, kMediumStyle},
    {"longTime:", kNoStyle, kLongStyle},          {"fullTime:", kNoStyle, kFullStyle},
};

const char *const kDescriptionCopyActions[] = {
    "gmtDateTime:",
    "numericalDate:",
    "numericalDateTime:",
    "numericalDateNoHyphens:",
};

const char kCustomCopyAction[] = "customDateFormatter:";

std::optional<QByteArray> Utf8(const QString &text)
{
    if (text.isNull())
        return std::nullopt;
    return text.toUtf8();
}

std::optional<QByteArray> DescriptionText(const Clock &clock, const QString &action)
{
    const QString description = DefaultDescription(WorkingInstant(clock));
    if (action == QLatin1String("gmtDateTime:"))
        return Utf8(description);

    const QStringList fields = DescriptionFields(description);
    if (fields.isEmpty())
        return std::nullopt;
    if (action == QLatin1String("numericalDate:"))
        return Utf8(fields.at(0));
    if (action == QLatin1String("numericalDateNoHyphens:"))
        return Utf8(QString(fields.at(0)).remove(QLatin1Char('-')));
    // Unlike the menu entry, which shows the date alone when there is no time field, the copy
    // action refuses to copy half a date-time.
    if (fields.size() < 2)
        return std::nullopt;
    return Utf8(fields.at(0) + QLatin1Char(' ') + fields.at(1));
}

} // namespace

QStringList DescriptionFields(const QString &description)
{
    if (description.isEmpty())
        return {};
    return description.split(QLatin1Char(' '));
}

bool IsCopyAction(const QString &action)
{
    for (const StyledCopyAction &styled : kStyledCopyActions) {
        if (action == QLatin1String(styled.action))
            return true;
    }
    for (const char *name : kDescriptionCopyActions) {
        if (action == QLatin1String(name))
            return true;
    }
    return action == QLatin1String(kCustomCopyAction);
}

std::optional<QByteArray> CopyTextForAction(const Clock &clock, const QString &action,
                                            const MenuItem &sender)
{
    for (const StyledCopyAction &styled : kStyledCopyActions) {
        if (action != QLatin1String(styled.action))
            continue;
        char buffer[kDateStringBufferSize];
        if (!MakeCurrentDateString(clock, styled.dateStyle, styled.timeStyle, buffer,
                                   kDateStringBufferSize))
            return std::nullopt;
        return QByteArray(buffer);
    }
    for (const char *name : kDescriptionCopyActions) {
        if (action == QLatin1String(name))
            return DescriptionText(clock, action);
    }
    if (action == QLatin1String(kCustomCopyAction)) {
        const CalendarDate date =
            CalendarDateWithTimeIntervalSinceReferenceDate(WorkingInstant(clock));
        return Utf8(MakeFormattedDateString(date, sender.toolTip));
    }
    return std::nullopt;
}

int PutStringOnClipboard(Clipboard &clipboard, const QByteArray &utf8)
{
    const int status = clipboard.open();
    if (status != 0)
        return status;
    clipboard.clear();
    return clipboard.putUtf8PlainText(utf8);
}
