#pragma once

#include <VLBase/vlbase_export.h>

#include <QByteArray>
#include <QFile>
#include <QString>

#include <memory>
#include <string>

class QTextStream;

/// A small text file, read and written line by line.
///
/// It is opened for reading and writing at its start and is never truncated: what is written
/// overwrites the old content, and what lies behind the last written byte stays. 8-bit text is
/// written byte by byte and read as UTF-8.
///
/// Only the constructor fails. What cannot be written is lost without notice, what cannot be read
/// is empty. Not locked.
class VLBASE_EXPORT VLTextFile
{
public:
    /// Opens the file.
    /// \param create whether a missing file is created
    /// \throws VLException when the file is missing and not to be created. A trace that names the
    ///     path goes before it when bit 32 of the error handler's message mask is set.
    VLTextFile(const QString& path, bool create);
    virtual ~VLTextFile();

    VLTextFile(const VLTextFile&) = delete;
    VLTextFile& operator=(const VLTextFile&) = delete;

    /// Opens a file whose opening failed before.
    /// \param mode flags of `QIODevice::OpenMode`
    /// \return false when the file does not exist, is open already or cannot be opened
    bool Open(int mode);

    /// The next line without its end, or an empty text at the end of the file.
    QString ReadLine();

    /// Writes a line and its end. A line for which the disk has no room is lost as a whole.
    /// \return the length of the line plus 2, modulo 65536, whether or not it could be written
    unsigned short WriteLine(const std::string& line);
    /// Writes the address of a converted copy of the line, in hexadecimal, in place of its text.
    unsigned short WriteLine(const QString& line);

    /// The same as `WriteLine`.
    unsigned short AppendLine(const std::string& line);
    unsigned short AppendLine(const QString& line);

    bool atEnd() const;
    bool isOpen() const;
    qint64 size() const;

protected:
    /// Opens or creates a file of this user's own. On Linux links are not followed; where one
    /// stands, or a file of somebody else, the user's number goes before the name's extension.
    explicit VLTextFile(const QString& path);

private:
    void write(QByteArray line);

    QFile m_File;
    std::unique_ptr<QTextStream> m_ReadStream;
};
