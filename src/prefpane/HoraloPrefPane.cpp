#include "prefpane/HoraloPrefPane.h"

#include "app/settings/Settings.h"
#include "datetext/DateText.h"
#include "platform/Platform.h"

#include <QDataStream>
#include <QIODevice>

#include <limits>

namespace {

// Only the first dragged row's position decides the target of every move, and a drop is
// never told how long the list is, so the arithmetic is done wide and narrowed at the end.
qint32 NarrowMoveTarget(qint64 target)
{
    if (target < std::numeric_limits<qint32>::min() || target > std::numeric_limits<qint32>::max())
        return -1; // outside any list: MoveArrayItem refuses it, as it would the exact value
    return static_cast<qint32>(target);
}

constexpr quint32 kRowIndexArchiveMagic = 0x48524958; // "HRIX"
constexpr quint16 kRowIndexArchiveVersion = 1;
constexpr QDataStream::Version kRowIndexArchiveStreamVersion = QDataStream::Qt_6_0;

} // namespace

HoraloPrefPane::HoraloPrefPane(Platform &platform, const PrefPaneOutlets &outlets)
    : m_platform(platform), m_window(outlets.window), m_versionInfoField(outlets.versionInfoField),
      m_useSymbolicNames(outlets.useSymbolicNames),
      m_initDateTimeChooserToCurrentTimeWhenOpened(
          outlets.initDateTimeChooserToCurrentTimeWhenOpened),
      m_dynamicDateTimeChooser(outlets.dynamicDateTimeChooser),
      m_includeGMTDateTime(outlets.includeGMTDateTime),
      m_includeDateOnlyItems(outlets.includeDateOnlyItems),
      m_includeTimeOnlyItems(outlets.includeTimeOnlyItems),
      m_menuTitleDisplayPopupButton(outlets.menuTitleDisplayPopupButton),
      m_includeTitleIconButton(outlets.includeTitleIconButton),
      customDatesTable(outlets.customDatesTable), addCusomDateButton(outlets.addCusomDateButton),
      deleteCustomDateButton(outlets.deleteCustomDateButton),
      formattedDateTextField(outlets.formattedDateTextField),
      formatCharacterTextField(outlets.formatCharacterTextField)
{}

// --- the window ---

void HoraloPrefPane::awakeFromNib()
{
    m_appID = AppIdentifier;

    // Every window, not only this one: closing the chooser saves and broadcasts too, which is
    // how the menu learns of changes made while the preferences window stays open.
    m_platform.windowCenter.addWindowWillCloseObserver(
        [this](Window *closing) { windowWillClose(closing); });

    customDatesTable->registerForDraggedTypes({kPrivateTableViewDataType});
    customDatesTable->setTarget(this);
    customDates.reserve(50);
    // Read as stored, without synchronising; elements that are not strings are left out, as
    // the menu leaves them out.
    const QVariant stored = m_platform.store.copyAppValue(SettingsKey::CustomDates, m_appID);
    if (stored.isValid())
        customDates.append(CustomDatesFromValue(stored));
    customDatesTable->reloadData();

    const Application &application = m_platform.application;
    m_versionInfoField->setStringValue(QStringLiteral("%1 %2").arg(
        application.infoDictionaryValue(QStringLiteral("CFBundleName")),
        application.infoDictionaryValue(QStringLiteral("CFBundleShortVersionString"))));

    loadControls();

    // What other processes and other writers of the settings file change must show here, or
    // the next save would write the window's older state over it. Our own broadcast comes back
    // too; reloading then finds nothing to change.
    m_platform.distributedCenter.addObserver(PreferencesChangedNotification, AppIdentifier,
                                             [this] { reloadFromStore(); });
    m_platform.storeWatcher.addObserver([this] { reloadFromStore(); });
}

void HoraloPrefPane::loadControls()
{
    const std::pair<CheckBox *, const QString &> boxes[] = {
        {m_useSymbolicNames, SettingsKey::UseSymbolicNames},
        {m_initDateTimeChooserToCurrentTimeWhenOpened,
         SettingsKey::InitDateTimeChooserToCurrentTimeWhenOpened},
        {m_dynamicDateTimeChooser, SettingsKey::DynamicDateTimeChooser},
        {m_includeGMTDateTime, SettingsKey::IncludeGMTDateTime},
        {m_includeDateOnlyItems, SettingsKey::IncludeDateOnlyItems},
        {m_includeTimeOnlyItems, SettingsKey::IncludeTimeOnlyItems},
        {m_includeTitleIconButton, SettingsKey::IncludeTitleIcon},
    };
    for (const auto &[box, key] : boxes) {
        const int state =
            ReadBooleanSetting(m_platform.store, key) ? CheckBox::kOnState : CheckBox::kOffState;
        if (box->state() != state)
            box->setState(state);
    }

    const QVariant title =
        m_platform.store.copyAppValue(SettingsKey::LastTitleDisplayName, m_appID);
    if (title.typeId() == QMetaType::QString)
        m_menuTitleDisplayPopupButton->selectItemWithTitle(title.toString());
}

void HoraloPrefPane::reloadFromStore()
{
    m_platform.store.appSynchronize(m_appID);
    loadControls();
    // A name removed from the store means the title is back at its default; show that.
    const QVariant title =
        m_platform.store.copyAppValue(SettingsKey::LastTitleDisplayName, m_appID);
    if (title.typeId() != QMetaType::QString)
        m_menuTitleDisplayPopupButton->selectItemWithTitle(DefaultTitleDisplayName);

    const QStringList stored =
        CustomDatesFromValue(m_platform.store.copyAppValue(SettingsKey::CustomDates, m_appID));
    // Left alone when equal, so that an unchanged list keeps its selection.
    if (stored != customDates) {
        customDates = stored;
        customDatesTable->reloadData();
    }
}

void HoraloPrefPane::save()
{
    m_platform.storeWatcher.checkNow();
    // IncludeTitleIcon and LastTitleDisplayName are left out on purpose: their own controls
    // store them at the click, and save must not overwrite a value set elsewhere since.
    writeBoolean(SettingsKey::UseSymbolicNames, m_useSymbolicNames);
    writeBoolean(SettingsKey::InitDateTimeChooserToCurrentTimeWhenOpened,
                 m_initDateTimeChooserToCurrentTimeWhenOpened);
    writeBoolean(SettingsKey::DynamicDateTimeChooser, m_dynamicDateTimeChooser);
    writeBoolean(SettingsKey::IncludeGMTDateTime, m_includeGMTDateTime);
    writeBoolean(SettingsKey::IncludeDateOnlyItems, m_includeDateOnlyItems);
    writeBoolean(SettingsKey::IncludeTimeOnlyItems, m_includeTimeOnlyItems);
    writeCustomDates();
    m_platform.store.appSynchronize(m_appID);
    m_platform.distributedCenter.postNotification(PreferencesChangedNotification, AppIdentifier);
}

void HoraloPrefPane::windowWillClose(Window *)
{
    save();
}

void HoraloPrefPane::writeBoolean(const QString &key, const CheckBox *checkBox)
{
    m_platform.store.setAppValue(key, QVariant(checkBox->state() != CheckBox::kOffState), m_appID);
}

// --- the settings controls ---

void HoraloPrefPane::useSymbolicNamesButtonClicked(Control *)
{
    writeBoolean(SettingsKey::UseSymbolicNames, m_useSymbolicNames);
    m_platform.store.appSynchronize(m_appID);
}

void HoraloPrefPane::initDateTimeChooserToCurrentTimeWhenOpened(Control *)
{
    writeBoolean(SettingsKey::InitDateTimeChooserToCurrentTimeWhenOpened,
                 m_initDateTimeChooserToCurrentTimeWhenOpened);
    m_platform.store.appSynchronize(m_appID);
}

void HoraloPrefPane::dynamicDateTimeChooser(Control *)
{
    writeBoolean(SettingsKey::DynamicDateTimeChooser, m_dynamicDateTimeChooser);
    m_platform.store.appSynchronize(m_appID);
}

void HoraloPrefPane::includeGMTDateTimeButtonClicked(Control *)
{
    writeBoolean(SettingsKey::IncludeGMTDateTime, m_includeGMTDateTime);
    m_platform.store.appSynchronize(m_appID);
}

void HoraloPrefPane::includeDateOnlyItemsButtonClicked(Control *)
{
    writeBoolean(SettingsKey::IncludeDateOnlyItems, m_includeDateOnlyItems);
    m_platform.store.appSynchronize(m_appID);
}

void HoraloPrefPane::includeTimeOnlyItemsButtonClicked(Control *)
{
    writeBoolean(SettingsKey::IncludeTimeOnlyItems, m_includeTimeOnlyItems);
    m_platform.store.appSynchronize(m_appID);
}

void HoraloPrefPane::menuTitleDisplayPopupButtonClicked(Control *)
{
    const auto index = static_cast<qint16>(m_menuTitleDisplayPopupButton->indexOfSelectedItem());
    const QString title = m_menuTitleDisplayPopupButton->itemTitleAtIndex(index);
    if (!title.isNull())
        m_platform.store.setAppValue(SettingsKey::LastTitleDisplayName, title, m_appID);
    m_platform.store.appSynchronize(m_appID);
}

void HoraloPrefPane::includeTitleIconButtonClicked(Control *)
{
    writeBoolean(SettingsKey::IncludeTitleIcon, m_includeTitleIconButton);
    m_platform.store.appSynchronize(m_appID);
}

// --- the custom formats table ---

void HoraloPrefPane::writeCustomDates()
{
    QVariantList list;
    list.reserve(customDates.size());
    for (const QString &format : std::as_const(customDates))
        list.append(format);
    m_platform.store.setAppValue(SettingsKey::CustomDates, list, m_appID);
}

void HoraloPrefPane::writeCustomDatesAndSynchronize()
{
    writeCustomDates();
    m_platform.store.appSynchronize(m_appID);
}

void HoraloPrefPane::addCustomDate(Control *)
{
    customDates.append(kDefaultCustomDateFormat);
    customDatesTable->reloadData();
    writeCustomDatesAndSynchronize();
}

void HoraloPrefPane::deleteCustomDate(Control *)
{
    const IndexSet rows = customDatesTable->selectedRowIndexes();
    // From the back, so that the indexes still to remove keep their meaning.
    for (auto it = rows.rbegin(); it != rows.rend(); ++it) {
        if (*it >= 0 && *it < customDates.size())
            customDates.removeAt(*it);
    }
    customDatesTable->reloadData();
    writeCustomDatesAndSynchronize();
}

void HoraloPrefPane::selectFormatSymbol(const TitledItem &sender)
{
    const QString symbol = sender.title().left(2);
    formatCharacterTextField->setStringValue(symbol);
    putStringOnClipboard(symbol);
}

int HoraloPrefPane::putStringOnClipboard(const QString &text)
{
    return m_platform.clipboard.writeUtf8PlainText(text.toUtf8());
}

void HoraloPrefPane::updateCustomDatesTable()
{
    m_platform.store.appSynchronize(m_appID);
    const QVariant stored = m_platform.store.copyAppValue(SettingsKey::CustomDates, m_appID);
    if (stored.typeId() != QMetaType::QVariantList && stored.typeId() != QMetaType::QStringList)
        return;
    customDates = CustomDatesFromValue(stored);
    customDatesTable->reloadData();
}

int HoraloPrefPane::numberOfRowsInTableView(TableView *) const
{
    return static_cast<int>(customDates.size());
}

QVariant HoraloPrefPane::tableViewObjectValueForTableColumnRow(TableView *,
                                                               const QString &columnIdentifier,
                                                               int row) const
{
    if (row < 0 || row >= customDates.size())
        return {};
    if (columnIdentifier == kCustomDateFormatColumn)
        return customDates.at(row);
    if (columnIdentifier == kPreviewColumn)
        return previewOfCustomDateFormat(customDates.at(row));
    return {};
}

QString HoraloPrefPane::previewOfCustomDateFormat(const QString &format) const
{
    // Always the present moment with localised names, whatever the chooser holds and whatever
    // UseSymbolicNames says; recomputed at every draw, never cached.
    const QVariantMap locale = m_platform.userDefaults.dictionaryRepresentation();
    return DescriptionWithCalendarFormat(
        CalendarDateWithTimeIntervalSinceReferenceDate(m_platform.clock.currentAbsoluteTime()),
        format, &locale);
}

void HoraloPrefPane::tableViewSetObjectValueForTableColumnRow(TableView *, const QVariant &value,
                                                              const QString &, int row)
{
    // The column is not looked at: the preview column must not be editable, or an edit there
    // would replace the row's format.
    if (value.typeId() == QMetaType::QString && row >= 0 && row < customDates.size())
        customDates[row] = value.toString();
    writeCustomDatesAndSynchronize();
}

bool HoraloPrefPane::tableViewWriteRowsWithIndexesToPasteboard(TableView *, const IndexSet &rows,
                                                               DragPasteboard &pasteboard)
{
    pasteboard.declareTypes({kPrivateTableViewDataType}, this);
    pasteboard.setDataForType(ArchiveRowIndexes(rows), kPrivateTableViewDataType);
    return true;
}

DragOperation HoraloPrefPane::tableViewValidateDropProposedRowProposedDropOperation(
    TableView *, const DragPasteboard &info, int, TableViewDropOperation operation)
{
    if (operation == TableViewDropOperation::On)
        return kDragOperationNone;
    const std::optional<QByteArray> data = info.dataForType(kPrivateTableViewDataType);
    if (!data || !UnarchiveRowIndexes(*data))
        return kDragOperationNone;
    return kDragOperationEvery;
}

bool HoraloPrefPane::tableViewAcceptDropRowDropOperation(TableView *, const DragPasteboard &info,
                                                         int row, TableViewDropOperation)
{
    std::optional<IndexSet> dragged;
    if (const std::optional<QByteArray> data = info.dataForType(kPrivateTableViewDataType))
        dragged = UnarchiveRowIndexes(*data);
    // Rows that are not in this list cannot have come from this table.
    if (dragged && !dragged->empty() && *dragged->rbegin() >= customDates.size())
        dragged.reset();
    if (!dragged) {
        writeCustomDatesAndSynchronize();
        return false;
    }

    IndexSet remaining = *dragged;
    QStringList moved;
    moved.reserve(static_cast<qsizetype>(remaining.size()));
    IndexSet newSelection;
    if (!remaining.empty()) {
        const qint64 first = *remaining.begin();
        const qint64 dropIndex = first < row ? qint64(row) - 1 : qint64(row);
        // The target is computed once, from the first dragged row, and subtracts that row's
        // index. A downward drop from below the top therefore lands early, an upward drop
        // above the first row is refused, and a drop next to it sends every row to the top.
        // These moves are intended: keep the arithmetic exactly as it is.
        const qint32 target = NarrowMoveTarget(dropIndex - first);
        while (!remaining.empty()) {
            const int index = *remaining.begin();
            moved.append(customDates.at(index));
            MoveArrayItem(customDates, index, target);
            remaining.erase(remaining.begin());
            IndexSet shifted;
            for (const int later : remaining)
                shifted.insert(later <= dropIndex ? later - 1 : later);
            remaining = std::move(shifted);
        }
    }
    // Equal strings all mark the first of them, so dragged duplicates may end up as one row.
    for (const QString &format : std::as_const(moved))
        newSelection.insert(static_cast<int>(customDates.indexOf(format)));

    customDatesTable->reloadData();
    customDatesTable->selectRowIndexes(newSelection, false);
    writeCustomDatesAndSynchronize();
    return true;
}

void HoraloPrefPane::tableViewSelectionDidChange(TableView *notificationObject)
{
    if (notificationObject != customDatesTable)
        return;
    deleteCustomDateButton->setEnabled(customDatesTable->numberOfSelectedRows() > 0);
}

// --- free functions ---

qint32 MoveArrayItem(QStringList &array, qint32 from, qint32 to)
{
    const qsizetype count = array.size();
    if (from == to || from < 0 || to < 0 || from > count - 1 || to > count - 1)
        return 0;
    const QString kept = array.at(from);
    if (from < to) {
        for (qint32 k = from + 1; k <= to; ++k)
            array[k - 1] = array.at(k);
    } else {
        for (qint32 k = from - 1; k >= to; --k)
            array[k + 1] = array.at(k);
    }
    array[to] = kept;
    return 0;
}

QByteArray ArchiveRowIndexes(const IndexSet &rows)
{
    QByteArray archive;
    QDataStream stream(&archive, QIODevice::WriteOnly);
    stream.setVersion(kRowIndexArchiveStreamVersion);
    stream << kRowIndexArchiveMagic << kRowIndexArchiveVersion;
    stream << static_cast<quint32>(rows.size());
    for (const int row : rows)
        stream << static_cast<quint32>(row);
    return archive;
}

std::optional<IndexSet> UnarchiveRowIndexes(const QByteArray &archive)
{
    QDataStream stream(archive);
    stream.setVersion(kRowIndexArchiveStreamVersion);
    quint32 magic = 0;
    quint16 version = 0;
    quint32 count = 0;
    stream >> magic >> version >> count;
    if (stream.status() != QDataStream::Ok || magic != kRowIndexArchiveMagic ||
        version != kRowIndexArchiveVersion)
        return std::nullopt;
    // Checked before reading, so that a forged count cannot make us loop for long.
    constexpr qsizetype kHeaderSize = sizeof(magic) + sizeof(version) + sizeof(count);
    if (archive.size() - kHeaderSize != qsizetype(count) * qsizetype(sizeof(quint32)))
        return std::nullopt;
    IndexSet rows;
    qint64 previous = -1;
    for (quint32 i = 0; i < count; ++i) {
        quint32 row = 0;
        stream >> row;
        // Written in strictly ascending order, each a non-negative int.
        if (row > quint32(std::numeric_limits<int>::max()) || qint64(row) <= previous)
            return std::nullopt;
        previous = row;
        rows.insert(rows.end(), static_cast<int>(row));
    }
    if (stream.status() != QDataStream::Ok || !stream.atEnd())
        return std::nullopt;
    return rows;
}
