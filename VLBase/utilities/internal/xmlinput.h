#pragma once

#include <QByteArray>
#include <QIODevice>
#include <QStringDecoder>
#include <QStringEncoder>
#include <QTemporaryFile>

#include <optional>

namespace vlbase::utilities {

/// A document on a device, from where the device stands, in stretches of text that can be read
/// twice.
class XmlInput
{
public:
    /// Reads as far as the declaration; a sequential device is copied into a temporary file.
    explicit XmlInput(QIODevice& device);

    /// The next stretch, a byte order mark included; nothing at the end and after a fault. What comes
    /// last before bytes that are no text ends there.
    std::optional<QString> next();

    /// Goes back to where the document begins.
    void rewind();

    /// Why there is no more text; empty at the document's end.
    const QString& fault() const { return m_fault; }

    /// Whether the fault is one of the document, behind the last stretch, and not of the device.
    bool isMalformed() const { return m_decoder.hasError(); }

    /// One for what is written in the document's encoding.
    QStringEncoder encoder() const;

private:
    void copy(QIODevice& device);
    void findEncoding();
    QStringDecoder decoder() const;

    QIODevice* m_device;
    QTemporaryFile m_copy;
    qint64 m_begin = 0;
    std::optional<QStringConverter::Encoding> m_encoding;
    QByteArray m_encodingName; ///< of one that has no number
    QStringDecoder m_decoder;
    QString m_fault;
};

} // namespace vlbase::utilities
