#pragma once

// The preferences window's widgets seen through the controller's control interfaces.

#include "prefpane/PrefPaneControls.h"

class QAbstractButton;
class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;

class QtCheckBox final : public CheckBox
{
public:
    explicit QtCheckBox(QCheckBox *box) : m_box(box) {}
    QCheckBox *box() const { return m_box; }
    int state() const override;
    void setState(int state) override;

private:
    QCheckBox *m_box;
};

class QtPopUpButton final : public PopUpButton
{
public:
    explicit QtPopUpButton(QComboBox *comboBox) : m_comboBox(comboBox) {}
    int indexOfSelectedItem() const override;
    QString itemTitleAtIndex(int index) const override;
    bool selectItemWithTitle(const QString &title) override;

private:
    QComboBox *m_comboBox;
};

class QtLabelTextField final : public TextField
{
public:
    explicit QtLabelTextField(QLabel *label) : m_label(label) {}
    QString stringValue() const override;
    void setStringValue(const QString &value) override;

private:
    QLabel *m_label;
};

class QtLineEditTextField final : public TextField
{
public:
    explicit QtLineEditTextField(QLineEdit *lineEdit) : m_lineEdit(lineEdit) {}
    QString stringValue() const override;
    void setStringValue(const QString &value) override;

private:
    QLineEdit *m_lineEdit;
};

class QtButton final : public Button
{
public:
    explicit QtButton(QAbstractButton *button) : m_button(button) {}
    bool isEnabled() const override;
    void setEnabled(bool enabled) override;

private:
    QAbstractButton *m_button;
};
