#pragma once

#include "filestore.h"

#include <QString>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace vlbase::tool::log {

/// When a log file is full and what then stays of it: F becomes F.1, F.1 becomes F.2 up to
/// F.`keep`, and the one that was there is gone.
struct Rotation
{
    std::int64_t bytes = 0; ///< 0: never
    int keep = 0;
};

/// The owner's file: whole lines go in, and whatever the disk does, the file holds each line
/// once and whole.
///
/// Text that the disk does not take stays here, at the place where the disk stopped, and
/// `flush` goes on from there. Renames go one after another from the oldest file on; when the
/// program is ended between two of them a name is free, which the next rotation fills.
class FileSink
{
public:
    /// What becomes of a file that no owner wrote.
    enum class Foreign {
        Refused,
        AppendedTo, ///< nothing is cut off, a last line without an end gets one
    };

    FileSink(FileStore& store, std::string name, Rotation rotation,
             Foreign foreign = Foreign::Refused);

    /// Opens the file, cutting off a last line of a log that has no end.
    /// \return false with `errorText` when it cannot be opened.
    bool open();

    /// Whether it is not opened because no owner wrote it.
    bool isForeign() const { return m_isForeign; }

    /// What `open` cut off, in bytes.
    std::int64_t tornBytes() const { return m_tornBytes; }

    /// Takes whole lines, each with its line end, and writes what the disk takes.
    /// \return as `flush`.
    bool write(std::string_view lines);

    /// Writes what is still here.
    /// \return whether all is in the file.
    bool flush();

    bool isFlushed() const { return m_written == m_text.size(); }

    /// Makes the file anew when its name was given to another file or removed from outside.
    void followName();

    /// Cuts a line that was written in part back, so that the file ends in a whole one.
    void close();

    /// Why the disk did not take the text; empty while it does.
    const QString& errorText() const { return m_errorText; }

    /// Why the file was not rotated though it is full; empty while all is well. It grows on.
    const QString& rotationErrorText() const { return m_rotationErrorText; }

private:
    bool cutTornLine();
    bool endLastLine();
    void removeForgottenFiles();
    std::size_t roomForWholeLines() const;
    bool isAtLineStart() const { return m_written == 0 || m_text[m_written - 1] == '\n'; }
    void rotate();
    bool shiftOlderFiles();
    std::string olderName(int number) const;

    FileStore& m_store;
    std::string m_name;
    Rotation m_rotation;
    Foreign m_foreign;
    bool m_isForeign = false;
    std::unique_ptr<GrowingFile> m_file;
    std::int64_t m_size = 0;
    std::int64_t m_tornBytes = 0;
    std::string m_text;        // lines under way,
    std::size_t m_written = 0; // and how much of them is in the file
    QString m_errorText;
    QString m_rotationErrorText;
};

} // namespace vlbase::tool::log
