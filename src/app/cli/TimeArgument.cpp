#include "app/cli/TimeArgument.h"

std::optional<AbsoluteTime> ParseTimeArgument(const QString &)
{
    return std::nullopt;
}

bool TakeTimeOptions(QStringList &, TimeOptions &, QString &)
{
    return true;
}
