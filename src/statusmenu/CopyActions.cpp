#include "statusmenu/CopyActions.h"

#include "datetext/DateText.h"

#include <QStringList>

namespace {

struct StyledCopyAction
{
    const char *menuName;
    const char *action;
    DateFormatterStyle dateStyle;
    DateFormatterStyle timeStyle;
};

constexpr StyledCopyAction kStyledCopyActions[] = {
    {"Short Date", "shortDate:", kShortStyle, kNoStyle},
    {"Medium Date", "mediumDate:", kMediumStyle, kNoStyle},
    {"Long Date", "longDate:", kLongStyle, kNoStyle},
    {"Full Date", "fullDate:", kFullStyle, kNoStyle},
    {"Short Date-Time", "shortDateTime:", kShortStyle, kShortStyle},
    {"Medium Date-Time", "mediumDateTime:", kMediumStyle, kMediumStyle},
    {"Long Date-Time", "longDateTime:", kLongStyle, kLongStyle},
    {"Full Date-Time", "fullDateTime:", kFullStyle, kFullStyle},
    {"Short Time", "shortTime:", kNoStyle, kShortStyle},
    {"Medium Time", "mediumTime:", kNoStyle, kMediumStyle},
    {"Long Time", "longTime:", kNoStyle, kLongStyle},
    {"Full Time", "fullTime:", kNoStyle, kFullStyle},
};

struct DescriptionCopyAction
{
    const char *menuName;
    const char *action;
};

constexpr DescriptionCopyAction kDescriptionCopyActions[] = {
    {"GMT Date Time", "gmtDateTime:"},
    {"Numerical Date", "numericalDate:"},
    {"Numerical Date Time", "numericalDateTime:"},
    {"Numerical Date No Hyphens", "numericalDateNoHyphens:"},
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
    for (const DescriptionCopyAction &described : kDescriptionCopyActions) {
        if (action == QLatin1String(described.action))
            return true;
    }
    return action == QLatin1String(kCustomCopyAction);
}

QString CopyActionForMenuName(const QString &menuName)
{
    for (const StyledCopyAction &styled : kStyledCopyActions) {
        if (menuName == QLatin1String(styled.menuName))
            return QString::fromLatin1(styled.action);
    }
    for (const DescriptionCopyAction &described : kDescriptionCopyActions) {
        if (menuName == QLatin1String(described.menuName))
            return QString::fromLatin1(described.action);
    }
    return {};
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
    for (const DescriptionCopyAction &described : kDescriptionCopyActions) {
        if (action == QLatin1String(described.action))
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
