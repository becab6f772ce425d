#pragma once

#include "prefpane/PrefPaneControls.h"

class QMimeData;

// A drag's pasteboard over the drag's mime data. Made over const data (a drop) it only reads.
class MimeDataPasteboard : public DragPasteboard
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
