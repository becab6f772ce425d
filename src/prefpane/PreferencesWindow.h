#pragma once

// The preferences window: the settings check boxes, the title pop-up, the custom formats table
// with its buttons and the format-symbol list, laid out with Qt's layouts.

#include "platform/NotificationCenter.h"
#include "platform/Window.h"
#include "prefpane/AutostartEntry.h"
#include "prefpane/HoraloPrefPane.h"
#include "prefpane/PrefPaneControlSet.h"
#include "prefpane/QtPrefPaneControls.h"

#include <QWidget>

class CustomDatesTableView;
class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class FormatSymbolList;
class QListWidgetItem;
class QPushButton;

class PreferencesWindow final : public QWidget, public Window
{
    Q_OBJECT

public:
    explicit PreferencesWindow(LocalWindowNotificationCenter &windowCenter,
                               QWidget *parent = nullptr);
    ~PreferencesWindow() override;

    // The outlets the controller is made with.
    PrefPaneOutlets outlets();
    // Sends every control's action to the controller. Once, before the window is shown.
    void connectActions(HoraloPrefPane &controller);

    // Window
    void makeKeyAndOrderFront() override;
    void setFloating(bool floating) override;
    // Posts window-will-close (when the window is shown) and hides it; nothing is destroyed.
    void close() override;

    // The widgets, for the tests and for whoever drives the window.
    QCheckBox *useSymbolicNamesBox() const { return m_useSymbolicNamesBox; }
    QCheckBox *initDateTimeChooserToCurrentTimeWhenOpenedBox() const
    {
        return m_initDateTimeChooserToCurrentTimeWhenOpenedBox;
    }
    QCheckBox *dynamicDateTimeChooserBox() const { return m_dynamicDateTimeChooserBox; }
    QCheckBox *includeGMTDateTimeBox() const { return m_includeGMTDateTimeBox; }
    QCheckBox *includeDateOnlyItemsBox() const { return m_includeDateOnlyItemsBox; }
    QCheckBox *includeTimeOnlyItemsBox() const { return m_includeTimeOnlyItemsBox; }
    QCheckBox *includeTitleIconBox() const { return m_includeTitleIconBox; }
    QComboBox *titleDisplayComboBox() const { return m_titleDisplayComboBox; }
    CustomDatesTableView *customDatesTableView() const { return m_table; }
    QPushButton *addButton() const { return m_addButton; }
    QPushButton *deleteButton() const { return m_deleteButton; }
    FormatSymbolList *formatSymbolList() const { return m_formatSymbolList; }
    QLineEdit *formatCharacterEdit() const { return m_formatCharacterEdit; }
    QLabel *versionLabel() const { return m_versionLabel; }
    QCheckBox *autostartBox() const { return m_autostartBox; }
    QLabel *autostartErrorLabel() const { return m_autostartErrorLabel; }
    // The size the window opens at: the default format and its preview whole, every symbol
    // shown, within the screen.
    QSize defaultSize() const;

protected:
    void closeEvent(QCloseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void showEvent(QShowEvent *event) override;

private:
    void chooseFormatSymbol(QListWidgetItem *item);
    void setAutostart(bool enabled);

    LocalWindowNotificationCenter &m_windowCenter;
    HoraloPrefPane *m_controller = nullptr;

    QCheckBox *m_useSymbolicNamesBox;
    QCheckBox *m_initDateTimeChooserToCurrentTimeWhenOpenedBox;
    QCheckBox *m_dynamicDateTimeChooserBox;
    QCheckBox *m_includeGMTDateTimeBox;
    QCheckBox *m_includeDateOnlyItemsBox;
    QCheckBox *m_includeTimeOnlyItemsBox;
    QCheckBox *m_includeTitleIconBox;
    QComboBox *m_titleDisplayComboBox;
    CustomDatesTableView *m_table;
    QPushButton *m_addButton;
    QPushButton *m_deleteButton;
    FormatSymbolList *m_formatSymbolList;
    QLineEdit *m_formatCharacterEdit;
    QLabel *m_versionLabel;
    QCheckBox *m_autostartBox;
    QLabel *m_autostartErrorLabel;
    AutostartEntry m_autostart;

    // The widgets above as the controller sees them.
    PrefPaneControlSet<QtCheckBox, QtPopUpButton, QtButton, QtLabelTextField, QtLineEditTextField>
        m_controls;
};
