#pragma once

#include <QXmlStreamReader>

namespace vlbase::utilities {

/// Tests whether a document is well-formed, stretch by stretch.
class XmlCheck
{
public:
    XmlCheck() { m_reader.setNamespaceProcessing(false); }

    /// \return false from the stretch on in which a fault was found
    bool take(QString text);

    /// To be called behind the last stretch.
    /// \return whether the document was whole and well-formed
    bool finish() const { return m_wasBegun && !m_reader.hasError(); }

    qint64 line() const { return m_reader.lineNumber(); }
    qint64 column() const { return m_reader.columnNumber() + 1; }
    QString reason() const;

private:
    QXmlStreamReader m_reader;
    bool m_wasBegun = false;
};

} // namespace vlbase::utilities
