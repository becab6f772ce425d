#pragma once

// ICU's text as Qt's: both are UTF-16, so the code units pass over unchanged.

#include <QString>

#include <unicode/unistr.h>

inline QString FromIcu(const icu::UnicodeString &text)
{
    return QString(reinterpret_cast<const QChar *>(text.getBuffer()), text.length());
}
