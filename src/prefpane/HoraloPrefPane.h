#pragma once

// The preferences window's controller: the settings check boxes, the title pop-up and the
// custom formats table. It writes each setting the moment its control changes and, whenever
// any window of the application closes, saves the window's state and tells the running
// application to rebuild its menu.

#include "prefpane/PrefPaneControls.h"

#include <QString>
#include <QStringList>
#include <QVariant>

#include <optional>

struct Platform;
class Window;

// The private drag type of the custom formats table: its data is an archive of the dragged
// row indexes (ArchiveRowIndexes).
inline const QString kPrivateTableViewDataType = QStringLiteral("MyPrivateTableViewDataType");

// The format a new custom entry starts with.
inline const QString kDefaultCustomDateFormat = QStringLiteral("%a %d %b, %Y %I:%M:%S %p (%z)");

// The identifiers (and titles) of the custom formats table's two columns.
inline const QString kCustomDateFormatColumn = QStringLiteral("Custom Date Format");
inline const QString kPreviewColumn = QStringLiteral("Preview");

// The controls the window's layout connects to the controller. The controller owns none of
// them; every pointer but formattedDateTextField must stay valid for the controller's life.
struct PrefPaneOutlets
{
    Window *window = nullptr;
    TextField *versionInfoField = nullptr;
    CheckBox *useSymbolicNames = nullptr;
    CheckBox *initDateTimeChooserToCurrentTimeWhenOpened = nullptr;
    CheckBox *dynamicDateTimeChooser = nullptr;
    CheckBox *includeGMTDateTime = nullptr;
    CheckBox *includeDateOnlyItems = nullptr;
    CheckBox *includeTimeOnlyItems = nullptr;
    PopUpButton *menuTitleDisplayPopupButton = nullptr;
    CheckBox *includeTitleIconButton = nullptr;
    TableView *customDatesTable = nullptr;
    // The misspelling is the layout's outlet name; the add button only sends addCustomDate.
    Button *addCusomDateButton = nullptr;
    Button *deleteCustomDateButton = nullptr;
    // Kept for the layout; no operation reads or writes it, so it may be null.
    TextField *formattedDateTextField = nullptr;
    TextField *formatCharacterTextField = nullptr;
};

class HoraloPrefPane
{
public:
    HoraloPrefPane(Platform &platform, const PrefPaneOutlets &outlets);
    HoraloPrefPane(const HoraloPrefPane &) = delete;
    HoraloPrefPane &operator=(const HoraloPrefPane &) = delete;

    Window *window() const { return m_window; }

    // Once, after the layout is connected: registers for every window's closing, loads the
    // custom formats, the version line, the seven check boxes and the title pop-up.
    void awakeFromNib();
    // Writes six booleans and the custom formats, synchronises once, broadcasts
    // "Preferences Changed". A change another writer made and that has not reached the window
    // yet is taken in first, so save never writes back what the window held before it.
    void save();
    // The store changed outside this window (a broadcast, the settings file changed on disk):
    // the check boxes, the title pop-up and the custom formats show what it holds now. The
    // user's own changes are in the store already, since every control writes at once.
    void reloadFromStore();
    // Any window of the application is about to close.
    void windowWillClose(Window *closing);

    // The settings controls' actions: each writes its own key and synchronises, no broadcast.
    void useSymbolicNamesButtonClicked(Control *sender);
    void initDateTimeChooserToCurrentTimeWhenOpened(Control *sender);
    void dynamicDateTimeChooser(Control *sender);
    void includeGMTDateTimeButtonClicked(Control *sender);
    void includeDateOnlyItemsButtonClicked(Control *sender);
    void includeTimeOnlyItemsButtonClicked(Control *sender);
    void menuTitleDisplayPopupButtonClicked(Control *sender);
    void includeTitleIconButtonClicked(Control *sender);

    // The custom formats table's buttons and the format-symbol list.
    void addCustomDate(Control *sender);
    void deleteCustomDate(Control *sender);
    void selectFormatSymbol(const TitledItem &sender);
    // Clears the general clipboard and puts the text on it as UTF-8; 0 on success.
    int putStringOnClipboard(const QString &text);
    // Reloads the list from the store; nothing in the application calls it.
    void updateCustomDatesTable();

    // The table's data source and delegate.
    int numberOfRowsInTableView(TableView *tableView) const;
    // An invalid QVariant for an unknown column or a row outside the list.
    QVariant tableViewObjectValueForTableColumnRow(TableView *tableView,
                                                   const QString &columnIdentifier, int row) const;
    // What the preview column shows for a format, also for one still being typed.
    QString previewOfCustomDateFormat(const QString &format) const;
    void tableViewSetObjectValueForTableColumnRow(TableView *tableView, const QVariant &value,
                                                  const QString &columnIdentifier, int row);
    bool tableViewWriteRowsWithIndexesToPasteboard(TableView *tableView, const IndexSet &rows,
                                                   DragPasteboard &pasteboard);
    DragOperation
    tableViewValidateDropProposedRowProposedDropOperation(TableView *tableView,
                                                          const DragPasteboard &info, int row,
                                                          TableViewDropOperation operation);
    bool tableViewAcceptDropRowDropOperation(TableView *tableView, const DragPasteboard &info,
                                             int row, TableViewDropOperation operation);
    // notificationObject is the table whose selection changed.
    void tableViewSelectionDidChange(TableView *notificationObject);

    // The working copy of the custom formats, row N being element N.
    const QStringList &customDateFormats() const { return customDates; }

private:
    void loadControls();
    void writeBoolean(const QString &key, const CheckBox *checkBox);
    void writeCustomDates();
    void writeCustomDatesAndSynchronize();

    Platform &m_platform;
    QString m_appID;
    Window *m_window;
    TextField *m_versionInfoField;
    CheckBox *m_useSymbolicNames;
    CheckBox *m_initDateTimeChooserToCurrentTimeWhenOpened;
    CheckBox *m_dynamicDateTimeChooser;
    CheckBox *m_includeGMTDateTime;
    CheckBox *m_includeDateOnlyItems;
    CheckBox *m_includeTimeOnlyItems;
    PopUpButton *m_menuTitleDisplayPopupButton;
    CheckBox *m_includeTitleIconButton;
    // The layout's historical outlet names, kept unprefixed.
    QStringList customDates;
    TableView *customDatesTable;
    Button *addCusomDateButton;
    Button *deleteCustomDateButton;
    TextField *formattedDateTextField;
    TextField *formatCharacterTextField;
};

// Moves one element of the array from one index to another, shifting the elements between
// them by one place. Does nothing when the indexes are equal or either lies outside the array.
// Always returns 0.
qint32 MoveArrayItem(QStringList &array, qint32 from, qint32 to);

// The private drag data: a versioned archive of row indexes. Unarchiving refuses anything that
// ArchiveRowIndexes could not have produced.
QByteArray ArchiveRowIndexes(const IndexSet &rows);
std::optional<IndexSet> UnarchiveRowIndexes(const QByteArray &archive);
