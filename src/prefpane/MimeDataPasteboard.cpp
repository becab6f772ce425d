#include "prefpane/MimeDataPasteboard.h"

#include <QMimeData>

QStringList MimeDataPasteboard::types() const
{
    return m_read ? m_read->formats() : QStringList{};
}

std::optional<QByteArray> MimeDataPasteboard::dataForType(const QString &type) const
{
    if (!m_read || !m_read->hasFormat(type))
        return std::nullopt;
    return m_read->data(type);
}

void MimeDataPasteboard::declareTypes(const QStringList &types, const void *)
{
    if (!m_write)
        return;
    m_write->clear();
    m_declared = types;
}

bool MimeDataPasteboard::setDataForType(const QByteArray &data, const QString &type)
{
    if (!m_write || !m_declared.contains(type))
        return false;
    m_write->setData(type, data);
    return true;
}
