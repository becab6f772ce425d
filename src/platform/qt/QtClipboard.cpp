#include "platform/qt/QtClipboard.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

int QtClipboard::writeUtf8PlainText(const QByteArray &bytes)
{
    QClipboard *clipboard = QGuiApplication::clipboard();
    if (!clipboard)
        return -1;
    auto *mime = new QMimeData;
    // Plain text only: X11 readers get UTF8_STRING and text/plain;charset=utf-8 from this.
    mime->setText(QString::fromUtf8(bytes));
    // The new text replaces the old in one step, which clears everything else the clipboard
    // held. On X11 an explicit clear first would leave a gap in which a selection bridge
    // (XWayland's in a Wayland session) takes the selection over, and our own take is refused.
    clipboard->setMimeData(mime, QClipboard::Clipboard);
    return 0;
}
