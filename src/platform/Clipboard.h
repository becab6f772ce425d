#pragma once

#include <QByteArray>

// The desktop's general clipboard, written as one plain UTF-8 text item.
class Clipboard
{
public:
    virtual ~Clipboard() = default;
    // Clears the clipboard, then puts exactly these bytes as its one item: plain text, no
    // terminator. 0 on success. A clipboard that cannot be reached keeps what it held and the
    // status is non-zero; a put that fails after the clear leaves it empty.
    virtual int writeUtf8PlainText(const QByteArray &bytes) = 0;
};
