#pragma once

#include <QByteArray>

// The desktop's general clipboard, written as one plain UTF-8 text item. Status results are 0
// on success.
class Clipboard
{
public:
    virtual ~Clipboard() = default;
    // Reaches the general clipboard; a non-zero status means it cannot be written now.
    virtual int open() = 0;
    virtual void clear() = 0;
    // Puts exactly these bytes as the one plain-text item; no terminator, no rich text.
    virtual int putUtf8PlainText(const QByteArray &bytes) = 0;
};
