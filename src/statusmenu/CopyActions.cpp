#include "statusmenu/CopyActions.h"

#include "datetext/DateFormatCatalogue.h"
#include "datetext/DateText.h"

#include <QStringList>

namespace {

const char kCustomCopyAction[] = "customDateFormatter:";

const CatalogueFormat *CatalogueFormatWithCopyAction(const QString &action)
{
    for (const CatalogueFormat &format : DateFormatCatalogue()) {
        if (format.copyAction == action)
            return &format;
    }
    return nullptr;
}

std::optional<QByteArray> Utf8(const QString &text)
{
    if (text.isNull())
        return std::nullopt;
    return text.toUtf8();
}

std::optional<QByteArray> StyledText(const Clock &clock, const CatalogueFormat &format)
{
    char buffer[kDateStringBufferSize];
    if (!MakeCurrentDateString(clock, format.dateStyle, format.timeStyle, buffer,
                               kDateStringBufferSize))
        return std::nullopt;
    return QByteArray(buffer);
}

std::optional<QByteArray> DescriptionText(const Clock &clock, const CatalogueFormat &format)
{
    const QString description = DefaultDescription(WorkingInstant(clock));
    switch (format.kind) {
    case DateFormatKind::GMTDateTime:
        return Utf8(description);
    case DateFormatKind::NumericalDate:
        return Utf8(NumericalDateFromDescription(description));
    case DateFormatKind::NumericalDateNoHyphens:
        return Utf8(NumericalDateNoHyphensFromDescription(description));
    case DateFormatKind::NumericalDateTime:
        // Unlike the menu entry, which shows the date alone when there is no time field, the
        // copy refuses half a date-time.
        return Utf8(NumericalDateTimeFromDescription(description));
    case DateFormatKind::Styled:
        break;
    }
    return std::nullopt;
}

} // namespace

QStringList DescriptionFields(const QString &description)
{
    if (description.isEmpty())
        return {};
    return description.split(QLatin1Char(' '));
}

QString CopyActionForMenuName(const QString &menuName)
{
    const CatalogueFormat *format = CatalogueFormatWithMenuName(menuName);
    return format ? format->copyAction.toString() : QString();
}

bool IsCopyAction(const QString &action)
{
    return CatalogueFormatWithCopyAction(action) || action == QLatin1String(kCustomCopyAction);
}

std::optional<QByteArray> CopyTextForAction(const Clock &clock, const QString &action,
                                            const MenuItem &sender)
{
    if (action == QLatin1String(kCustomCopyAction)) {
        const CalendarDate date =
            CalendarDateWithTimeIntervalSinceReferenceDate(WorkingInstant(clock));
        return Utf8(MakeFormattedDateString(date, sender.toolTip));
    }
    const CatalogueFormat *format = CatalogueFormatWithCopyAction(action);
    if (!format)
        return std::nullopt;
    if (format->kind == DateFormatKind::Styled)
        return StyledText(clock, *format);
    return DescriptionText(clock, *format);
}

int PutStringOnClipboard(Clipboard &clipboard, const QByteArray &utf8)
{
    const int status = clipboard.open();
    if (status != 0)
        return status;
    clipboard.clear();
    return clipboard.putUtf8PlainText(utf8);
}
