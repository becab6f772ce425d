#pragma once

// The preferences window's widgets seen through the controller's control interfaces.

#include "prefpane/PrefPaneControls.h"

class QAbstractButton;
class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QMimeData;

class QtCheckBox final : public CheckBox
{
public:
    explicit QtCheckBox(QCheckBox *box) : m_box(box) {}
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

// An entry of the format-symbol list as the sender of selectFormatSymbol.
class QtTitledItem final : public TitledItem
{
public:
    explicit QtTitledItem(QString title) : m_title(std::move(title)) {}
    QString title() const override { return m_title; }

private:
    QString m_title;
};

// A drag's pasteboard over the drag's mime data. Made over const data (a drop) it only reads.
class MimeDataPasteboard final : public DragPasteboard
{
public:
    explicit MimeDataPasteboard(QMimeData *data) : m_read(data), m_write(data) {}
    explicit MimeDataPasteboard(const QMimeData *data) : m_read(data), m_write(nullptr) {}

    QStringList types() const override;
    std::optional<QByteArray> dataForType(const QString &type) const override;
    void declareTypes(const QStringList &types, const void *owner) override;
    bool setDataForType(const QByteArray &data, const QString &type) override;

private:
    const QMimeData *m_read;
    QMimeData *m_write;
    QStringList m_declared;
};
