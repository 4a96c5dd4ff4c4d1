#pragma once

#include "filter.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace vlbase::logreading {

/// What is remembered of a line.
struct IndexedLine
{
    std::int64_t begin = 0; ///< place in the file
    std::int64_t end = 0;   ///< behind its line feed
    int number = 0;         ///< 0: none
    std::optional<std::int64_t> seconds;
    std::uint16_t sender = 0;
    bool isVague = false; ///< its sender or time did not fit: only the line itself tells
};

/// Up to 65,536 lines that follow each other in a file; 14 bytes each.
class IndexBlock
{
public:
    static constexpr std::uint32_t capacity = 65536;
    /// The sender of lines that are none of a log.
    static constexpr std::uint16_t noSender = 0;
    /// The sender of lines beyond the number of different ones that are kept apart.
    static constexpr std::uint16_t otherSender = 65535;

    explicit IndexBlock(std::int64_t base)
        : m_base(base)
    {
        m_offsets[0] = 0;
    }

    /// How many lines it has; those never change.
    std::uint32_t size() const { return m_size.load(std::memory_order_acquire); }
    std::int64_t begin(std::uint32_t row) const { return m_base + m_offsets[row]; }
    std::int64_t end(std::uint32_t row) const { return begin(row + 1); }
    IndexedLine line(std::uint32_t row) const;

    /// For the one thread that builds it.
    /// \return false when it does not fit any more.
    bool append(std::int64_t end, int number, std::optional<std::int64_t> seconds,
                std::uint16_t sender);

private:
    std::int64_t m_base;
    std::atomic<std::uint32_t> m_size{0};
    // Not initialised: the pages of lines that are still to come cost nothing.
    std::uint32_t m_offsets[capacity + 1];
    std::uint32_t m_seconds[capacity];
    std::uint32_t m_numbers[capacity];
    std::uint16_t m_senders[capacity];
};

/// The lines of a file as they were at a moment. Cheap to copy; any thread.
class IndexView
{
public:
    std::int64_t size() const { return m_size; }
    IndexedLine line(std::int64_t row) const;
    /// The line that holds a place in the file, or the last one before it; -1 when none is.
    std::int64_t rowAt(std::int64_t place) const;

    struct Piece
    {
        const IndexBlock* block = nullptr;
        std::int64_t first = 0; ///< row of its first line
        std::uint32_t size = 0; ///< lines of it that belong to the view
    };
    std::size_t pieces() const { return m_blocks.size(); }
    Piece piece(std::size_t number) const;
    std::size_t pieceOf(std::int64_t row) const;

private:
    friend class LogIndex;

    std::vector<std::shared_ptr<const IndexBlock>> m_blocks;
    std::vector<std::int64_t> m_firsts;
    std::int64_t m_size = 0;
};

/// Where the lines of a file are and what they are, as far as the file was read. One thread
/// appends; any thread looks.
class LogIndex
{
public:
    LogIndex();

    /// Where the first line begins, when that is not the file's beginning.
    void startAt(std::int64_t place) { m_end = place; }
    /// Takes a line that follows the ones before it and ends at \a end in the file.
    void append(std::string_view line, std::int64_t end);

    /// Gives up the memory of lines before \a row; the others keep their rows.
    void forget(std::int64_t row);
    std::int64_t size() const { return m_size.load(std::memory_order_acquire); }
    IndexView view() const;

    /// The different senders so far, by their number in an `IndexedLine`.
    std::size_t senders() const;
    /// Station, module and level of one; valid as long as the index.
    Sender sender(std::size_t number) const;
    /// Makes known to a plan the senders that it does not know yet.
    void teach(FilterPlan& plan) const;

private:
    std::uint16_t senderOf(std::string_view key);
    std::optional<std::int64_t> secondsOf(std::string_view time, std::string_view line);

    mutable std::mutex m_mutex; // of the lists; the blocks need none
    std::vector<std::shared_ptr<IndexBlock>> m_blocks;
    std::vector<std::int64_t> m_firsts;
    std::vector<std::unique_ptr<const std::string>> m_senders;
    std::atomic<std::int64_t> m_size{0};

    // Of the appending thread alone.
    std::unordered_map<std::string_view, std::uint16_t> m_numbers;
    std::string_view m_lastKey;
    std::uint16_t m_lastSender = 0;
    std::string m_lastTime;
    std::optional<std::int64_t> m_lastSeconds;
    logging::LogLine m_scratch;
    std::int64_t m_end = 0;
};

} // namespace vlbase::logreading
