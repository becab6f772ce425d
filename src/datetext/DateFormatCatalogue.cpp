#include "datetext/DateFormatCatalogue.h"

#include <QStringList>

namespace {
using G = DateFormatGroup;
using K = DateFormatKind;
using A = MenuAction;

constexpr std::array<CatalogueFormat, 16> kCatalogue = {{
    {G::DateTime, u"Short Date-Time", u"Short Date Time", A::ShortDateTime, K::Styled, kShortStyle,
     kShortStyle},
    {G::DateTime, u"Medium Date-Time", u"Medium Date Time", A::MediumDateTime, K::Styled,
     kMediumStyle, kMediumStyle},
    {G::DateTime, u"Long Date-Time", u"Long Date Time", A::LongDateTime, K::Styled, kLongStyle,
     kLongStyle},
    {G::DateTime, u"Full Date-Time", u"Full Date Time", A::FullDateTime, K::Styled, kFullStyle,
     kFullStyle},
    {G::DateOnly, u"Short Date", u"Short Date", A::ShortDate, K::Styled, kShortStyle, kNoStyle},
    {G::DateOnly, u"Medium Date", u"Medium Date", A::MediumDate, K::Styled, kMediumStyle, kNoStyle},
    {G::DateOnly, u"Long Date", u"Long Date", A::LongDate, K::Styled, kLongStyle, kNoStyle},
    {G::DateOnly, u"Full Date", u"Full Date", A::FullDate, K::Styled, kFullStyle, kNoStyle},
    {G::TimeOnly, u"Short Time", u"", A::ShortTime, K::Styled, kNoStyle, kShortStyle},
    {G::TimeOnly, u"Medium Time", u"", A::MediumTime, K::Styled, kNoStyle, kMediumStyle},
    {G::TimeOnly, u"Long Time", u"", A::LongTime, K::Styled, kNoStyle, kLongStyle},
    {G::TimeOnly, u"Full Time", u"", A::FullTime, K::Styled, kNoStyle, kFullStyle},
    {G::Numerical, u"GMT Date Time", u"GMT", A::GMTDateTime, K::GMTDateTime, kNoStyle, kNoStyle},
    {G::Numerical, u"Numerical Date Time", u"", A::NumericalDateTime, K::NumericalDateTime,
     kNoStyle, kNoStyle},
    {G::Numerical, u"Numerical Date", u"", A::NumericalDate, K::NumericalDate, kNoStyle, kNoStyle},
    {G::Numerical, u"Numerical Date No Hyphens", u"", A::NumericalDateNoHyphens,
     K::NumericalDateNoHyphens, kNoStyle, kNoStyle},
}};

// An empty description has no date to cut from it, rather than one empty field.
QStringList DescriptionFields(const QString &description)
{
    if (description.isEmpty())
        return {};
    return description.split(QLatin1Char(' '));
}
} // namespace

const std::array<CatalogueFormat, 16> &DateFormatCatalogue()
{
    return kCatalogue;
}

const CatalogueFormat *CatalogueFormatWithMenuName(QStringView menuName)
{
    for (const CatalogueFormat &format : kCatalogue) {
        if (format.menuName == menuName)
            return &format;
    }
    return nullptr;
}

const CatalogueFormat *CatalogueFormatWithTitleName(QStringView titleName)
{
    if (titleName.isEmpty())
        return nullptr;
    for (const CatalogueFormat &format : kCatalogue) {
        if (format.titleName == titleName)
            return &format;
    }
    return nullptr;
}

QString NumericalDateFromDescription(const QString &description)
{
    const QStringList fields = DescriptionFields(description);
    return fields.isEmpty() ? QString() : fields.at(0);
}

QString NumericalDateTimeFromDescription(const QString &description)
{
    const QStringList fields = DescriptionFields(description);
    if (fields.size() < 2)
        return {};
    return fields.at(0) + QLatin1Char(' ') + fields.at(1);
}

QString NumericalDateNoHyphensFromDescription(const QString &description)
{
    QString date = NumericalDateFromDescription(description);
    if (date.isNull())
        return {};
    return date.remove(QLatin1Char('-'), Qt::CaseSensitive);
}

QString CatalogueFormatText(const CatalogueFormat &format, AbsoluteTime instant)
{
    switch (format.kind) {
    case DateFormatKind::Styled:
        return StyledDateTimeString(instant, format.dateStyle, format.timeStyle);
    case DateFormatKind::GMTDateTime:
        return DefaultDescription(instant);
    case DateFormatKind::NumericalDateTime:
        return NumericalDateTimeFromDescription(DefaultDescription(instant));
    case DateFormatKind::NumericalDate:
        return NumericalDateFromDescription(DefaultDescription(instant));
    case DateFormatKind::NumericalDateNoHyphens:
        return NumericalDateNoHyphensFromDescription(DefaultDescription(instant));
    }
    return {};
}

std::optional<QString> TitleFormatText(QStringView titleName, const Clock &clock)
{
    const CatalogueFormat *format = CatalogueFormatWithTitleName(titleName);
    if (!format)
        return std::nullopt;
    if (format->kind == DateFormatKind::GMTDateTime)
        return GMTString(clock);
    return StyledTitleText(clock, format->dateStyle, format->timeStyle);
}
