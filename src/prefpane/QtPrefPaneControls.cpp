#include "prefpane/QtPrefPaneControls.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>

int QtCheckBox::state() const
{
    switch (m_box->checkState()) {
    case Qt::Unchecked:
        return kOffState;
    case Qt::PartiallyChecked:
        return kMixedState;
    case Qt::Checked:
        break;
    }
    return kOnState;
}

void QtCheckBox::setState(int state)
{
    // setCheckState sends no clicked(), so setting a box never runs its action.
    if (state == kOffState)
        m_box->setCheckState(Qt::Unchecked);
    else if (state == kMixedState)
        m_box->setCheckState(Qt::PartiallyChecked);
    else
        m_box->setCheckState(Qt::Checked);
}

int QtPopUpButton::indexOfSelectedItem() const
{
    return m_comboBox->currentIndex();
}

QString QtPopUpButton::itemTitleAtIndex(int index) const
{
    if (index < 0 || index >= m_comboBox->count())
        return {};
    return m_comboBox->itemText(index);
}

bool QtPopUpButton::selectItemWithTitle(const QString &title)
{
    const int index = m_comboBox->findText(title, Qt::MatchExactly | Qt::MatchCaseSensitive);
    if (index < 0)
        return false;
    m_comboBox->setCurrentIndex(index); // activated() is the action; this does not send it
    return true;
}

QString QtLabelTextField::stringValue() const
{
    return m_label->text();
}

void QtLabelTextField::setStringValue(const QString &value)
{
    m_label->setText(value);
}

QString QtLineEditTextField::stringValue() const
{
    return m_lineEdit->text();
}

void QtLineEditTextField::setStringValue(const QString &value)
{
    m_lineEdit->setText(value);
}

bool QtButton::isEnabled() const
{
    return m_button->isEnabled();
}

void QtButton::setEnabled(bool enabled)
{
    m_button->setEnabled(enabled);
}
