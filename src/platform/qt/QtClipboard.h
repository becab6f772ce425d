#pragma once

#include "platform/Clipboard.h"

// The clipboard through Qt's, on whatever platform Qt draws with.
class QtClipboard final : public Clipboard
{
public:
    int writeUtf8PlainText(const QByteArray &bytes) override;
};
