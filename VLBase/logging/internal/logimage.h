#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace vlbase::logging {

enum class Role { Owner = 0, Writer = 1, Reader = 2 };

/// The shared log's bytes: a header of 1080, then half 1, then half 0. A view, cheap to copy.
///
/// Works on any memory. Sizes and places are checked once and then remembered, and what can
/// change is checked at each use, so that no content leads outside. Changes are for the holder
/// of the log's mutex; the words of the header are atomic all the same, because others may go on
/// without it after a time-out.
class LogImage
{
public:
    static constexpr std::size_t headerSize = 1080;
    static constexpr std::size_t fileNameSize = 512; // what of the field may be used

    /// Bytes of a log with halves of \a bufferSize.
    static constexpr std::uint64_t sizeFor(int bufferSize)
    {
        return headerSize + 2 * static_cast<std::uint64_t>(bufferSize);
    }

    LogImage() = default;

    /// What keeps \a size bytes at \a base from being a log; null when they are one.
    static const char* defect(const void* base, std::size_t size);

    /// Whether \a size bytes at \a base can be a log that is just being made.
    static bool isUnfinished(const void* base, std::size_t size);

    /// Views an existing log of \a size bytes, which has no defect. Should its buffer size have
    /// been changed since that was found, the view is of a log without room.
    static LogImage view(void* base, std::size_t size);

    /// Makes a log in zeroed memory of `sizeFor(bufferSize)` bytes.
    static LogImage format(void* base, int bufferSize);

    int bufferSize() const { return m_bufferSize; }
    char* half(int index) const { return m_halves[index]; }

    /// Bytes in use; 0 when the header says something that cannot be.
    int fill(int index) const;
    void setFill(int index, int bytes);

    /// Empties a half if its fill length is still \a expected.
    bool emptyIf(int index, int expected);
    void emptyHalves();

    int users(Role role) const;
    int addUser(Role role);
    int removeUser(Role role);
    void setSoleOwner();

    std::int32_t index() const;
    void setIndex(std::int32_t index);

    struct Number
    {
        std::int32_t number;
        std::int32_t counter; ///< the header's index before
    };
    Number takeNumber();

    char* fileName() const;
    bool setFileName(std::string_view name);
    bool acceptsDataBlocks() const;
    void setAcceptsDataBlocks(bool accepts);

    /// Appends a line to a half; its oldest lines make room. False, and nothing happens, when
    /// the line can never fit.
    bool append(int index, std::string_view line);

    /// Asks the processor for the places where the next line will stand.
    void prefetchEnds() const;

    /// Cuts the oldest lines off, so that at most \a bytes of whole lines are left.
    void keepNewest(int index, int bytes);

    /// Takes away the first \a bytes.
    void dropFront(int index, int bytes);

    /// Brings both halves back into order after somebody died in the middle of a change.
    void repair();

private:
    LogImage(void* base, int bufferSize);

    std::atomic<std::int32_t>& word(std::size_t offset) const;
    std::atomic<std::uint8_t>& acceptFlag() const;

    char* m_base = nullptr;
    int m_bufferSize = 0;
    char* m_halves[2] = {nullptr, nullptr};
};

} // namespace vlbase::logging
