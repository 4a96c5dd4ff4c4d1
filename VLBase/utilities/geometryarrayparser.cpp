#include "geometryarrayparser.h"

#include <QDataStream>

namespace {

constexpr quint32 magicNumber = 0x1D9D0CB;
constexpr quint16 knownMajorVersion = 1;
constexpr qsizetype magicBytes = 4;

QByteArray recordOf(const QString& hexText)
{
    return QByteArray::fromHex(hexText.toLatin1());
}

} // namespace

struct GeometryArrayParser::Record
{
    quint16 majorVersion = 0;
    quint16 minorVersion = 0;
    QRect frameGeometry;
    QRect normalGeometry;
    qint32 screenNumber = -1;
    quint8 maximized = 0;
    quint8 fullScreen = 0;
    bool valid = false;
};

GeometryArrayParser::GeometryArrayParser()
    : m_Record(std::make_unique<Record>())
{
}

GeometryArrayParser::GeometryArrayParser(const QByteArray& record)
    : GeometryArrayParser()
{
    setGeometryArray(record);
}

GeometryArrayParser::GeometryArrayParser(const QString& hexText)
    : GeometryArrayParser()
{
    setHexString(hexText);
}

GeometryArrayParser::GeometryArrayParser(const char* hexText)
    : GeometryArrayParser(QString::fromLatin1(hexText))
{
}

GeometryArrayParser::GeometryArrayParser(const GeometryArrayParser& other)
    : m_Record(std::make_unique<Record>(*other.m_Record))
{
}

GeometryArrayParser& GeometryArrayParser::operator=(const GeometryArrayParser& other)
{
    *m_Record = *other.m_Record;
    return *this;
}

GeometryArrayParser::~GeometryArrayParser() = default;

bool GeometryArrayParser::setGeometryArray(const QByteArray& record)
{
    m_Record->valid = false;
    if (record.size() < magicBytes)
        return false;
    QDataStream stream(record);
    stream.setVersion(QDataStream::Qt_4_0);
    quint32 magic = 0;
    stream >> magic;
    if (magic != magicNumber)
        return false;
    stream >> m_Record->majorVersion >> m_Record->minorVersion;
    if (m_Record->majorVersion != knownMajorVersion)
        return false;
    m_Record->valid = true;
    // The stream reads zeros behind the end.
    stream >> m_Record->frameGeometry >> m_Record->normalGeometry >> m_Record->screenNumber >>
        m_Record->maximized >> m_Record->fullScreen;
    return true;
}

bool GeometryArrayParser::setHexString(const QString& hexText)
{
    return setGeometryArray(recordOf(hexText));
}

quint16 GeometryArrayParser::majorVersion() const
{
    return m_Record->majorVersion;
}

quint16 GeometryArrayParser::minorVersion() const
{
    return m_Record->minorVersion;
}

QRect GeometryArrayParser::frameGeometry() const
{
    return m_Record->frameGeometry;
}

QRect GeometryArrayParser::normalGeometry() const
{
    return m_Record->normalGeometry;
}

int GeometryArrayParser::screenNumber() const
{
    return m_Record->screenNumber;
}

unsigned char GeometryArrayParser::maximized() const
{
    return m_Record->maximized;
}

unsigned char GeometryArrayParser::fullScreen() const
{
    return m_Record->fullScreen;
}

bool GeometryArrayParser::isValid() const
{
    return m_Record->valid;
}
