#include "prefpane/PreferencesWindow.h"

#include "prefpane/CustomDatesTableView.h"
#include "prefpane/FormatSymbolList.h"
#include "prefpane/PrefPaneLayout.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QShortcut>
#include <QVBoxLayout>

#include <algorithm>

PreferencesWindow::PreferencesWindow(LocalWindowNotificationCenter &windowCenter, QWidget *parent)
    : QWidget(parent, Qt::Window), m_windowCenter(windowCenter),
      m_useSymbolicNamesBox(new QCheckBox(tr("Show format &names instead of dates"), this)),
      m_initDateTimeChooserToCurrentTimeWhenOpenedBox(
          new QCheckBox(tr("&Reset the chooser to the current time when it opens"), this)),
      m_dynamicDateTimeChooserBox(new QCheckBox(tr("&Keep the chooser's clock running"), this)),
      m_includeGMTDateTimeBox(new QCheckBox(tr("Include &GMT date and time"), this)),
      m_includeDateOnlyItemsBox(new QCheckBox(tr("Include &date-only formats"), this)),
      m_includeTimeOnlyItemsBox(new QCheckBox(tr("Include &time-only formats"), this)),
      m_includeTitleIconBox(new QCheckBox(tr("Show the &icon beside the title"), this)),
      m_titleDisplayComboBox(new QComboBox(this)), m_table(new CustomDatesTableView(this)),
      m_addButton(new QPushButton(tr("&Add"), this)),
      m_deleteButton(new QPushButton(tr("De&lete"), this)),
      m_formatSymbolList(new FormatSymbolList(this)), m_formatCharacterEdit(new QLineEdit(this)),
      m_versionLabel(new QLabel(this)),
      m_autostartBox(new QCheckBox(tr("Start Horalo &when you log in"), this)),
      m_autostartErrorLabel(new QLabel(this)),
      m_autostart(AutostartEntry::DefaultConfigHome(), AutostartEntry::DefaultProgram()),
      m_controls{
          .versionInfoField = QtLabelTextField(m_versionLabel),
          .useSymbolicNames = QtCheckBox(m_useSymbolicNamesBox),
          .initDateTimeChooserToCurrentTimeWhenOpened =
              QtCheckBox(m_initDateTimeChooserToCurrentTimeWhenOpenedBox),
          .dynamicDateTimeChooser = QtCheckBox(m_dynamicDateTimeChooserBox),
          .includeGMTDateTime = QtCheckBox(m_includeGMTDateTimeBox),
          .includeDateOnlyItems = QtCheckBox(m_includeDateOnlyItemsBox),
          .includeTimeOnlyItems = QtCheckBox(m_includeTimeOnlyItemsBox),
          .menuTitleDisplayPopupButton = QtPopUpButton(m_titleDisplayComboBox),
          .includeTitleIconButton = QtCheckBox(m_includeTitleIconBox),
          .addCusomDateButton = QtButton(m_addButton),
          .deleteCustomDateButton = QtButton(m_deleteButton),
          .formatCharacterTextField = QtLineEditTextField(m_formatCharacterEdit),
      }
{
    setWindowTitle(tr("Horalo Preferences"));

    // --- the menu's groups ---
    auto *menuGroup = new QGroupBox(tr("Menu"), this);
    auto *menuLayout = new QVBoxLayout(menuGroup);
    menuLayout->addWidget(m_useSymbolicNamesBox);
    menuLayout->addWidget(m_includeGMTDateTimeBox);
    menuLayout->addWidget(m_includeDateOnlyItemsBox);
    menuLayout->addWidget(m_includeTimeOnlyItemsBox);

    // --- the status item's title ---
    for (const QString &title : kTitleDisplayNames)
        m_titleDisplayComboBox->addItem(title);
    m_titleDisplayComboBox->setCurrentText(kLaidOutTitleDisplayName);
    m_titleDisplayComboBox->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    auto *titleGroup = new QGroupBox(tr("Title"), this);
    auto *titleLayout = new QFormLayout(titleGroup);
    auto *titleLabel = new QLabel(tr("Title &format:"), titleGroup);
    titleLabel->setBuddy(m_titleDisplayComboBox);
    titleLayout->addRow(titleLabel, m_titleDisplayComboBox);
    titleLayout->addRow(m_includeTitleIconBox);

    // --- the date-time chooser ---
    auto *chooserGroup = new QGroupBox(tr("Date-time chooser"), this);
    auto *chooserLayout = new QVBoxLayout(chooserGroup);
    chooserLayout->addWidget(m_initDateTimeChooserToCurrentTimeWhenOpenedBox);
    chooserLayout->addWidget(m_dynamicDateTimeChooserBox);

    // --- the session: not a setting of the store but a file the session manager reads ---
    m_autostartErrorLabel->setWordWrap(true);
    m_autostartErrorLabel->setForegroundRole(QPalette::BrightText);
    m_autostartErrorLabel->setBackgroundRole(QPalette::Dark);
    m_autostartErrorLabel->hide();
    auto *sessionGroup = new QGroupBox(tr("Session"), this);
    auto *sessionLayout = new QVBoxLayout(sessionGroup);
    sessionLayout->addWidget(m_autostartBox);
    sessionLayout->addWidget(m_autostartErrorLabel);

    m_versionLabel->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto *settingsColumn = new QVBoxLayout;
    settingsColumn->addWidget(menuGroup);
    settingsColumn->addWidget(titleGroup);
    settingsColumn->addWidget(chooserGroup);
    settingsColumn->addWidget(sessionGroup);
    settingsColumn->addStretch(1);
    settingsColumn->addWidget(m_versionLabel);

    // --- the custom formats: the table and its buttons over the symbols ---
    m_table->setMinimumSize(240, 90);
    m_table->setToolTip(tr("Double-click a format to edit it; drag rows to reorder them."));
    m_deleteButton->setEnabled(false); // until a row is selected
    m_addButton->setAutoDefault(false);
    m_deleteButton->setAutoDefault(false);
    auto *buttonRow = new QHBoxLayout;
    buttonRow->addWidget(m_addButton);
    buttonRow->addWidget(m_deleteButton);
    buttonRow->addStretch(1);

    QStringList symbolTitles;
    for (const FormatSymbol &symbol : kFormatSymbols)
        symbolTitles.append(symbol.title());
    m_formatSymbolList->setTitles(symbolTitles);
    for (int i = 0; i < m_formatSymbolList->count(); ++i)
        m_formatSymbolList->item(i)->setToolTip(
            tr("Click to copy %1 to the clipboard").arg(kFormatSymbols[std::size_t(i)].symbol));
    m_formatCharacterEdit->setReadOnly(true);
    m_formatCharacterEdit->setMaximumWidth(60);
    auto *symbolLabel = new QLabel(tr("&Symbols (click to copy):"), this);
    symbolLabel->setBuddy(m_formatSymbolList);
    auto *copiedLabel = new QLabel(tr("Copied:"), this);
    copiedLabel->setBuddy(m_formatCharacterEdit);
    auto *symbolRow = new QHBoxLayout;
    symbolRow->addWidget(symbolLabel);
    symbolRow->addStretch(1);
    symbolRow->addWidget(copiedLabel);
    symbolRow->addWidget(m_formatCharacterEdit);

    auto *formatsGroup = new QGroupBox(tr("Custom formats"), this);
    auto *formatsLayout = new QVBoxLayout(formatsGroup);
    // The table takes whatever height the symbols leave.
    formatsLayout->addWidget(m_table, 1);
    formatsLayout->addLayout(buttonRow);
    formatsLayout->addLayout(symbolRow);
    formatsLayout->addWidget(m_formatSymbolList);

    auto *outer = new QHBoxLayout(this);
    outer->addLayout(settingsColumn);
    outer->addWidget(formatsGroup, 1);

    resize(defaultSize());

    // Tab walks the settings from top to bottom, then the formats from top to bottom; the
    // table and the symbol list are one stop each (arrow keys move inside them).
    QWidget *const tabOrder[] = {
        m_useSymbolicNamesBox,
        m_includeGMTDateTimeBox,
        m_includeDateOnlyItemsBox,
        m_includeTimeOnlyItemsBox,
        m_titleDisplayComboBox,
        m_includeTitleIconBox,
        m_initDateTimeChooserToCurrentTimeWhenOpenedBox,
        m_dynamicDateTimeChooserBox,
        m_autostartBox,
        m_table,
        m_addButton,
        m_deleteButton,
        m_formatCharacterEdit,
        m_formatSymbolList,
    };
    for (std::size_t i = 1; i < std::size(tabOrder); ++i)
        setTabOrder(tabOrder[i - 1], tabOrder[i]);

    connect(m_autostartBox, &QCheckBox::clicked, this, &PreferencesWindow::setAutostart);

    auto *closeShortcut = new QShortcut(QKeySequence::Close, this);
    connect(closeShortcut, &QShortcut::activated, this, &PreferencesWindow::close);
}

QSize PreferencesWindow::defaultSize() const
{
    // Wide enough for the default format and a preview of it side by side; the layout's own
    // height then shows every symbol. Both as far as the screen allows, with room to spare.
    const QFontMetrics metrics = m_table->fontMetrics();
    const int cellPadding = 4 * metrics.averageCharWidth();
    const int tableWidth =
        metrics.horizontalAdvance(kDefaultCustomDateFormat) +
        metrics.horizontalAdvance(QStringLiteral("Wed 28 Sep, 2006 12:59:59 PM (-0500)")) +
        2 * cellPadding + m_table->verticalScrollBar()->sizeHint().width() +
        2 * m_table->frameWidth();
    const QSize hint = sizeHint();
    QSize size(hint.width() + std::max(0, tableWidth - m_table->sizeHint().width()), hint.height());
    if (const QScreen *current = screen())
        size = size.boundedTo(current->availableGeometry().size() * 0.9);
    return size.expandedTo(minimumSizeHint());
}

void PreferencesWindow::setAutostart(bool enabled)
{
    QString error;
    if (m_autostart.setEnabled(enabled, &error)) {
        m_autostartErrorLabel->hide();
    } else {
        m_autostartErrorLabel->setText(error);
        m_autostartErrorLabel->show();
    }
    // Whatever happened, the box shows what the session manager will do.
    m_autostartBox->setChecked(m_autostart.isEnabled());
}

void PreferencesWindow::showEvent(QShowEvent *event)
{
    // The entry can be changed outside Horalo (by hand, or by the desktop's start-up dialog).
    m_autostartBox->setChecked(m_autostart.isEnabled());
    QWidget::showEvent(event);
}

PreferencesWindow::~PreferencesWindow() = default;

PrefPaneOutlets PreferencesWindow::outlets()
{
    return m_controls.outlets(this, m_table, nullptr); // this layout has no formatted-date field
}

void PreferencesWindow::connectActions(HoraloPrefPane &controller)
{
    m_controller = &controller;
    HoraloPrefPane *const target = &controller;
    m_controls.wireCheckBoxes([this, target](QtCheckBox &box, auto action) {
        // clicked() comes from the user only, never from setState.
        connect(box.box(), &QCheckBox::clicked, this,
                [target, &box, action] { (target->*action)(&box); });
    });

    connect(m_titleDisplayComboBox, &QComboBox::activated, this, [this, target] {
        target->menuTitleDisplayPopupButtonClicked(&m_controls.menuTitleDisplayPopupButton);
    });
    connect(m_addButton, &QPushButton::clicked, this,
            [this, target] { target->addCustomDate(&m_controls.addCusomDateButton); });
    connect(m_deleteButton, &QPushButton::clicked, this,
            [this, target] { target->deleteCustomDate(&m_controls.deleteCustomDateButton); });
    connect(m_table, &CustomDatesTableView::deleteKeyPressed, this,
            [this, target] { target->deleteCustomDate(m_table); });
    connect(m_formatSymbolList, &QListWidget::itemClicked, this,
            &PreferencesWindow::chooseFormatSymbol);
    connect(m_formatSymbolList, &QListWidget::itemActivated, this,
            &PreferencesWindow::chooseFormatSymbol);
}

void PreferencesWindow::chooseFormatSymbol(QListWidgetItem *item)
{
    if (!m_controller || !item)
        return;
    m_controller->selectFormatSymbol(TitledItem(item->text()));
}

void PreferencesWindow::makeKeyAndOrderFront()
{
    show();
    raise();
    activateWindow();
}

void PreferencesWindow::setFloating(bool floating)
{
    const bool wasVisible = QWidget::isVisible();
    setWindowFlag(Qt::WindowStaysOnTopHint, floating);
    if (wasVisible)
        show(); // changing the flags hides a shown window
}

void PreferencesWindow::close()
{
    QWidget::close();
}

void PreferencesWindow::closeEvent(QCloseEvent *event)
{
    // The title bar's button, Ctrl+W, Escape and close() all pass here. A window that is not
    // shown does not close, so it does not announce it.
    if (QWidget::isVisible())
        m_windowCenter.postWindowWillClose(this);
    event->accept();
}

void PreferencesWindow::keyPressEvent(QKeyEvent *event)
{
    // Reaches the window only when no editor or list took the key first.
    if (event->key() == Qt::Key_Escape && event->modifiers() == Qt::NoModifier) {
        close();
        return;
    }
    QWidget::keyPressEvent(event);
}
