#include "vltextfile.h"

#include <VLBase/errorhandling/errorhandler.h>
#include <VLBase/errorhandling/quality.h>
#include <VLBase/errorhandling/vlexception.h>

#include <QTextStream>

namespace {

constexpr char SourceUnit[] = "errorhandling/vltextfile";
constexpr unsigned int TraceBit = 32;

// The places that the trace and the exception have always named; readers of logs search for them.
constexpr unsigned short TraceLine = 37;
constexpr unsigned int ThrowLine = 39;

unsigned short countOf(std::size_t length)
{
    return static_cast<unsigned short>(length + 2);
}

} // namespace

VLTextFile::VLTextFile(const QString& path, bool create)
    : m_File(path)
{
    if (!create && !m_File.exists()) {
        if (ErrorHandler::Instance().GetMessageMask() & TraceBit)
            _Q_Trace(path, QLatin1String(SourceUnit), TraceLine);
        throw VLException(std::string("File does not exist - see Details"), SourceUnit,
                          "VLTextFile", "ctor", ThrowLine, VLException::NoErrorId);
    }
    // A file that cannot be opened swallows what is written to it.
    static_cast<void>(m_File.open(QIODevice::ReadWrite));
}

VLTextFile::~VLTextFile() = default;

bool VLTextFile::Open(int mode)
{
    // Qt would warn about a file that is open.
    return m_File.exists() && !m_File.isOpen() && m_File.open(QIODevice::OpenMode(mode));
}

QString VLTextFile::ReadLine()
{
    if (!m_File.isReadable())
        return {};
    // The stream reads ahead, so the file can be at its end while lines are left.
    if (m_ReadStream ? m_ReadStream->atEnd() : m_File.atEnd())
        return {};
    if (!m_ReadStream)
        m_ReadStream = std::make_unique<QTextStream>(&m_File);
    return m_ReadStream->readLine();
}

unsigned short VLTextFile::WriteLine(const std::string& line)
{
    // Not through a text stream, which would change bytes that are not UTF-8.
    if (m_File.isWritable()) {
        m_File.write(line.data(), static_cast<qint64>(line.size()));
        m_File.putChar('\n');
        m_File.flush();
    }
    return countOf(line.size());
}

unsigned short VLTextFile::WriteLine(const QString& line)
{
    const std::wstring text = line.toStdWString();
    if (m_File.isWritable()) {
        QTextStream(&m_File) << static_cast<const void*>(text.c_str()) << Qt::endl;
        m_File.flush();
    }
    return countOf(static_cast<std::size_t>(line.size()));
}

unsigned short VLTextFile::AppendLine(const std::string& line)
{
    return WriteLine(line);
}

unsigned short VLTextFile::AppendLine(const QString& line)
{
    return WriteLine(line);
}

bool VLTextFile::atEnd() const
{
    return m_File.atEnd();
}

bool VLTextFile::isOpen() const
{
    return m_File.isOpen();
}

qint64 VLTextFile::size() const
{
    return m_File.size();
}
