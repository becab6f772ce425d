#pragma once

// Readable failure messages for Qt values.

#include <QString>
#include <QVariant>

#include <ostream>

inline void PrintTo(const QString &text, std::ostream *os)
{
    *os << '"' << text.toStdString() << '"';
}

inline void PrintTo(const QVariant &value, std::ostream *os)
{
    *os << "QVariant(" << value.typeName() << ", \"" << value.toString().toStdString() << "\")";
}
