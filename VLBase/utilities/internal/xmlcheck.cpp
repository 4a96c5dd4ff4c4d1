#include "xmlcheck.h"

#include <QCoreApplication>

namespace vlbase::utilities {

bool XmlCheck::take(QString text)
{
    // The reader knows a byte order mark in bytes only.
    if (!m_wasBegun && text.startsWith(QChar::ByteOrderMark))
        text.remove(0, 1);
    m_wasBegun = m_wasBegun || !text.isEmpty();
    m_reader.addData(text);
    while (!m_reader.atEnd())
        m_reader.readNext();
    return !m_reader.hasError() ||
           m_reader.error() == QXmlStreamReader::PrematureEndOfDocumentError;
}

QString XmlCheck::reason() const
{
    return m_wasBegun ? m_reader.errorString()
                      : QCoreApplication::translate("XmlFormat", "The document is empty.");
}

} // namespace vlbase::utilities
