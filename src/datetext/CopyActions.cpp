#include "datetext/CopyActions.h"

#include "datetext/DateFormatCatalogue.h"
#include "datetext/DateText.h"

namespace {

const CatalogueFormat *CatalogueFormatWithCopyAction(MenuAction action)
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

} // namespace

std::optional<MenuItem> CopyEntryForMenuName(const QString &menuName)
{
    const CatalogueFormat *format = CatalogueFormatWithMenuName(menuName);
    if (!format)
        return std::nullopt;
    MenuItem entry;
    entry.title = menuName;
    entry.action = format->copyAction;
    return entry;
}

std::optional<MenuItem> CopyEntryForName(const QString &name)
{
    if (!name.startsWith(kCustomFormatPrefix))
        return CopyEntryForMenuName(name);
    // A custom entry carries its format in its tool tip, and so does this one.
    MenuItem entry;
    entry.title = name;
    entry.action = MenuAction::CustomDateFormatter;
    entry.toolTip = name.mid(kCustomFormatPrefix.size());
    return entry;
}

std::optional<QByteArray> CopyTextForAction(const Clock &clock, MenuAction action,
                                            const MenuItem &sender)
{
    if (action == MenuAction::CustomDateFormatter) {
        const CalendarDate date =
            CalendarDateWithTimeIntervalSinceReferenceDate(WorkingInstant(clock));
        return Utf8(MakeFormattedDateString(date, sender.toolTip));
    }
    const CatalogueFormat *format = CatalogueFormatWithCopyAction(action);
    if (!format)
        return std::nullopt;
    if (format->kind == DateFormatKind::Styled)
        return StyledText(clock, *format);
    // The texts cut from the default description. Unlike the menu entry, which shows the date
    // alone when there is no time field, the copy refuses half a date-time.
    return Utf8(CatalogueFormatText(*format, WorkingInstant(clock)));
}

int PutStringOnClipboard(Clipboard &clipboard, const QByteArray &utf8)
{
    return clipboard.writeUtf8PlainText(utf8);
}
