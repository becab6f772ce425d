#include "platform/qt/QtAboutPanel.h"

#include "platform/qt/IconCache.h"

QtAboutPanel::QtAboutPanel(LocalWindowNotificationCenter &windowCenter, const QString &name,
                           const QString &version)
    : m_windowCenter(windowCenter)
{
    setAttribute(Qt::WA_QuitOnClose, false);
    setWindowTitle(QStringLiteral("About Horalo"));
    setIconPixmap(LoadIconResource(QStringLiteral("Horalo.tif")).pixmap(64, 64));
    setTextFormat(Qt::RichText);
    setText(QStringLiteral("<b>%1</b> %2").arg(name.toHtmlEscaped(), version.toHtmlEscaped()));
    setInformativeText(QStringLiteral("The date and time in your status area, in the format you "
                                      "choose, one click from the clipboard."));
    setStandardButtons(QMessageBox::Ok);
    // Every way out of a dialog (its button, Escape, the title bar's close) ends in finished,
    // exactly once per showing; a plain hide, as at quit, does not.
    connect(this, &QDialog::finished, this, [this] { m_windowCenter.postWindowWillClose(this); });
}

void QtAboutPanel::makeKeyAndOrderFront()
{
    show();
    raise();
    activateWindow();
}

void QtAboutPanel::setFloating(bool floating)
{
    const bool wasVisible = QMessageBox::isVisible();
    setWindowFlag(Qt::WindowStaysOnTopHint, floating);
    if (wasVisible)
        show(); // changing the flags hides a shown window
}
