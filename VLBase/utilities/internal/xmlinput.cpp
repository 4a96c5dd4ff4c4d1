#include "xmlinput.h"

#include <QCoreApplication>
#include <QRegularExpression>

#include <algorithm>

namespace vlbase::utilities {

namespace {

constexpr qint64 stretch = 64 * 1024;
constexpr int longestWaitMs = 30000; // for a socket or a process that says nothing

QString translated(const char* text)
{
    return QCoreApplication::translate("XmlFormat", text);
}

QByteArray declaredEncoding(const QByteArray& head)
{
    static const QRegularExpression declaration(
        QStringLiteral("^<\\?xml\\s[^>]*\\sencoding\\s*=\\s*[\"']([A-Za-z][A-Za-z0-9._-]*)[\"']"));
    return declaration.match(QString::fromLatin1(head)).captured(1).toLatin1();
}

} // namespace

XmlInput::XmlInput(QIODevice& device)
    : m_device(&device)
{
    if (!device.isReadable())
        m_fault = translated("The input is not open for reading.");
    else if (device.isSequential())
        copy(device);
    if (!m_fault.isEmpty())
        return;
    m_begin = m_device->pos();
    findEncoding();
}

void XmlInput::copy(QIODevice& device)
{
    if (!m_copy.open()) {
        m_fault = m_copy.errorString();
        return;
    }
    do {
        for (QByteArray bytes = device.read(stretch); !bytes.isEmpty();
             bytes = device.read(stretch)) {
            if (m_copy.write(bytes) != bytes.size()) {
                m_fault = m_copy.errorString();
                return;
            }
        }
    } while (device.waitForReadyRead(longestWaitMs));
    if (!m_copy.seek(0))
        m_fault = m_copy.errorString();
    m_device = &m_copy;
}

void XmlInput::findEncoding()
{
    constexpr qint64 longestDeclaration = 1024;
    const QByteArray head = m_device->peek(longestDeclaration);
    m_encoding = QStringConverter::encodingForData(head, u'<');
    if (!m_encoding) {
        m_encodingName = declaredEncoding(head);
        if (m_encodingName.isEmpty())
            m_encoding = QStringConverter::Utf8;
    }
    m_decoder = decoder();
    if (!m_decoder.isValid()) {
        m_fault =
            translated("The encoding '%1' is not known.").arg(QString::fromLatin1(m_encodingName));
    }
}

QStringDecoder XmlInput::decoder() const
{
    // The mark is a part of the document: it is written again as it was read.
    constexpr auto flags = QStringConverter::Flag::ConvertInitialBom;
    return m_encoding ? QStringDecoder(*m_encoding, flags)
                      : QStringDecoder(m_encodingName.constData(), flags);
}

QStringEncoder XmlInput::encoder() const
{
    return m_encoding ? QStringEncoder(*m_encoding) : QStringEncoder(m_encodingName.constData());
}

std::optional<QString> XmlInput::next()
{
    if (!m_fault.isEmpty())
        return {};
    QByteArray bytes(stretch, Qt::Uninitialized);
    const qint64 count = m_device->read(bytes.data(), bytes.size());
    if (count < 0)
        m_fault = m_device->errorString();
    bytes.truncate(std::max<qint64>(count, 0));
    // A character that was cut off by the end shows before the next one.
    QString text = m_decoder(bytes.isEmpty() ? QByteArrayView("\n") : QByteArrayView(bytes));
    if (m_decoder.hasError()) {
        m_fault = translated("This is no text of the document's encoding.");
        return text.left(text.indexOf(QChar::ReplacementCharacter));
    }
    if (bytes.isEmpty())
        return {};
    return text;
}

void XmlInput::rewind()
{
    if (!m_device->seek(m_begin))
        m_fault = m_device->errorString();
    m_decoder = decoder();
}

} // namespace vlbase::utilities
