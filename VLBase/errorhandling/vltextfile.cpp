#include "vltextfile.h"

#include <VLBase/errorhandling/errorhandler.h>
#include <VLBase/errorhandling/quality.h>
#include <VLBase/errorhandling/vlexception.h>
#include <VLBase/platform/ownfile.h>

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
    static_cast<void>(m_File.open(QIODevice::ReadWrite | QIODevice::Unbuffered));
}

VLTextFile::VLTextFile(const QString& path)
    : m_File(path)
{
    static_cast<void>(vlbase::platform::openOwnFile(m_File));
}

VLTextFile::~VLTextFile() = default;

bool VLTextFile::Open(int mode)
{
    // Qt would warn about a file that is open.
    return m_File.exists() && !m_File.isOpen() &&
           m_File.open(QIODevice::OpenMode(mode) | QIODevice::Unbuffered);
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
    write(QByteArray(line.data(), static_cast<qsizetype>(line.size())));
    return countOf(line.size());
}

unsigned short VLTextFile::WriteLine(const QString& line)
{
    const std::wstring text = line.toStdWString();
    QByteArray address;
    QTextStream(&address) << static_cast<const void*>(text.c_str());
    write(address);
    return countOf(static_cast<std::size_t>(line.size()));
}

// In one piece and past all buffers: on a full disk a buffer would keep ends of lines whose texts
// are lost. What fitted of a line is overwritten by the next one.
void VLTextFile::write(QByteArray line)
{
    if (!m_File.isWritable())
        return;
    line += '\n';
    const qint64 begin = m_File.pos();
    if (m_File.write(line) != line.size() && !m_File.isSequential())
        m_File.seek(begin);
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
