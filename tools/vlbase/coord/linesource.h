#pragma once

#include <QFile>
#include <QString>

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

namespace vlbase::tool::coord {

/// The lines of a file or of standard input, read in large pieces.
class LineSource
{
public:
    /// Opens a file, or standard input for "-".
    /// \return false when it cannot be opened; `fault()` says why.
    bool open(const QString& path);

    struct Line
    {
        std::string_view text; ///< without its end; valid until the next call
        bool isCut = false;    ///< longer than any line should be: this is its beginning
    };

    /// \return the next line, nothing at the end and after a failure to read.
    std::optional<Line> next();

    bool hasFailed() const { return m_hasFailed; }
    QString fault() const { return m_isStandardInput ? m_inputFault : m_file.errorString(); }

    /// Bytes of all, 0 when unknown, and of what was returned so far.
    qint64 size() const { return m_size; }
    qint64 position() const { return m_taken; }

private:
    bool fill();
    std::optional<Line> take(std::size_t length, std::size_t endLength, bool isCut);

    QFile m_file;
    bool m_isStandardInput = false;
    QString m_inputFault;
    bool m_isAtEnd = false;
    bool m_hasFailed = false;
    bool m_skipsToEnd = false; // of a line that was cut
    qint64 m_size = 0;
    qint64 m_taken = 0;
    std::vector<char> m_buffer;
    std::size_t m_begin = 0;
    std::size_t m_end = 0;
};

} // namespace vlbase::tool::coord
