#pragma once

#include "linesource.h"
#include "tools/logreading/platform/nativefile.h"

#include <optional>
#include <string>
#include <utility>

namespace vlbase::tool::log {

/// The owner's file as it grows, through all its rotations, for viewers that leave the live
/// buffer to another one or cannot keep up with it.
///
/// The file that is open stays open when it is renamed, is read to its end, and is then found
/// among F.1, F.2 and so on: the next newer one follows.
class FileFollower : public LineSource
{
public:
    /// Starts at the file's present end.
    explicit FileFollower(std::string file);
    /// Starts behind the line of this number, in the file or in an older one.
    FileFollower(std::string file, int lastIndex);

    bool isOpen() const { return m_file.isOpen(); }

    bool poll(std::string& lines) override;
    void fileChanged(const std::string& file) override;
    QString description() const override;

private:
    bool readOn(std::string& lines);
    bool openNext();
    std::optional<std::string> nameAfter(const platform::FileIdentity& wanted) const;
    std::pair<int, int> findAmongOlder(const platform::FileIdentity& wanted) const;
    std::string nameOf(int number) const;
    bool open(const std::string& name, bool atEnd);
    void openBehind(int index);
    void dropKnown(std::string& lines, std::size_t from);

    std::string m_name;
    platform::NativeFile m_file;
    std::int64_t m_position = 0; // behind the last whole line
    bool m_startsAtEnd = true;   // for the file that is opened next
    int m_lastKnown = 0;         // lines up to this number are not wanted; 0: all are
};

} // namespace vlbase::tool::log
