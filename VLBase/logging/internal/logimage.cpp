#include "logimage.h"

#include <VLBase/logging/internal/lineindex.h>
#include <VLBase/logging/internal/prefetch.h>

#include <algorithm>
#include <cstring>
#include <limits>

namespace vlbase::logging {

namespace {

constexpr char signature[] = "Logger 2.0"; // with its zero

constexpr std::size_t bufferSizeAt = 20;
constexpr std::size_t dataOffsetAt = 24;
constexpr std::size_t writersAt = 28;
constexpr std::size_t ownersAt = 32;
constexpr std::size_t readersAt = 36;
constexpr std::size_t fillAt[2] = {40, 44};
constexpr std::size_t indexAt = 48;
constexpr std::size_t fileNameAt = 53;
constexpr std::size_t acceptAt = 1077;

static_assert(sizeof(std::atomic<std::int32_t>) == 4 &&
              std::atomic<std::int32_t>::is_always_lock_free);
static_assert(sizeof(std::atomic<std::uint8_t>) == 1 &&
              std::atomic<std::uint8_t>::is_always_lock_free);

std::int32_t readWord(const void* base, std::size_t offset)
{
    std::int32_t value = 0;
    std::memcpy(&value, static_cast<const char*>(base) + offset, sizeof value);
    return value;
}

std::size_t countAt(Role role)
{
    switch (role) {
    case Role::Owner:
        return ownersAt;
    case Role::Writer:
        return writersAt;
    case Role::Reader:
        return readersAt;
    }
    return writersAt;
}

} // namespace

LogImage::LogImage(void* base, int bufferSize)
    : m_base(static_cast<char*>(base))
    , m_bufferSize(bufferSize)
    , m_halves{m_base + headerSize + bufferSize, m_base + headerSize} // crossed, by contract
{
}

const char* LogImage::defect(const void* base, std::size_t size)
{
    if (size < headerSize)
        return "too short for a header";
    if (std::memcmp(base, signature, sizeof signature) != 0)
        return "wrong signature";
    if (readWord(base, dataOffsetAt) != static_cast<std::int32_t>(headerSize))
        return "wrong data offset";
    const std::int32_t bufferSize = readWord(base, bufferSizeAt);
    if (bufferSize <= 0 || sizeFor(bufferSize) > size)
        return "buffer size does not fit";
    for (const std::size_t at : fillAt) {
        const std::int32_t fill = readWord(base, at);
        if (fill < 0 || fill > bufferSize)
            return "fill length out of range";
    }
    return nullptr;
}

// The signature is what comes last, from its front.
bool LogImage::isUnfinished(const void* base, std::size_t size)
{
    const auto* const bytes = static_cast<const char*>(base);
    if (size < headerSize)
        return false;
    const char* const end = bytes + sizeof signature - 1;
    const char* const differs = std::mismatch(bytes, end, signature).first;
    return differs != end && std::all_of(differs, end, [](char byte) { return byte == 0; });
}

LogImage LogImage::view(void* base, std::size_t size)
{
    const std::int32_t bufferSize = readWord(base, bufferSizeAt);
    return LogImage(base, bufferSize > 0 && sizeFor(bufferSize) <= size ? bufferSize : 0);
}

LogImage LogImage::format(void* base, int bufferSize)
{
    LogImage image(base, bufferSize);
    image.word(bufferSizeAt) = bufferSize;
    image.setIndex(firstNumber);
    image.setAcceptsDataBlocks(true);
    // The signature comes last, so that nobody takes an unfinished one for a log; the exchange
    // keeps it behind all else.
    image.word(dataOffsetAt).exchange(static_cast<std::int32_t>(headerSize));
    std::memcpy(base, signature, sizeof signature);
    return image;
}

std::atomic<std::int32_t>& LogImage::word(std::size_t offset) const
{
    return *reinterpret_cast<std::atomic<std::int32_t>*>(m_base + offset);
}

std::atomic<std::uint8_t>& LogImage::acceptFlag() const
{
    return *reinterpret_cast<std::atomic<std::uint8_t>*>(m_base + acceptAt);
}

int LogImage::fill(int index) const
{
    const std::int32_t bytes = word(fillAt[index]).load(std::memory_order_acquire);
    return bytes < 0 || bytes > m_bufferSize ? 0 : bytes;
}

void LogImage::setFill(int index, int bytes)
{
    word(fillAt[index]).store(bytes, std::memory_order_release);
}

bool LogImage::emptyIf(int index, int expected)
{
    std::int32_t bytes = expected;
    return word(fillAt[index]).compare_exchange_strong(bytes, 0);
}

void LogImage::emptyHalves()
{
    setFill(0, 0);
    setFill(1, 0);
}

int LogImage::users(Role role) const
{
    return word(countAt(role)).load(std::memory_order_relaxed);
}

int LogImage::addUser(Role role)
{
    return word(countAt(role)).fetch_add(1) + 1;
}

int LogImage::removeUser(Role role)
{
    return word(countAt(role)).fetch_sub(1) - 1;
}

void LogImage::setSoleOwner()
{
    word(ownersAt) = 1;
}

std::int32_t LogImage::index() const
{
    return word(indexAt).load(std::memory_order_relaxed);
}

void LogImage::setIndex(std::int32_t index)
{
    word(indexAt).store(index, std::memory_order_relaxed);
}

// By compare and exchange, so that writers who go on without the mutex share no number.
LogImage::Number LogImage::takeNumber()
{
    std::atomic<std::int32_t>& counter = word(indexAt);
    std::int32_t before = counter.load(std::memory_order_relaxed);
    for (;;) {
        const std::int32_t number = before < turningNumber ? before : firstNumber;
        const std::int32_t after = before < turningNumber ? before + 1 : firstNumber;
        if (counter.compare_exchange_weak(before, after, std::memory_order_relaxed))
            return {number, before};
    }
}

char* LogImage::fileName() const
{
    return m_base + fileNameAt;
}

bool LogImage::setFileName(std::string_view name)
{
    if (name.size() >= fileNameSize) {
        fileName()[0] = '\0';
        return false;
    }
    name.copy(fileName(), name.size());
    fileName()[name.size()] = '\0';
    return true;
}

bool LogImage::acceptsDataBlocks() const
{
    return acceptFlag().load(std::memory_order_relaxed) != 0;
}

void LogImage::setAcceptsDataBlocks(bool accepts)
{
    acceptFlag().store(accepts ? 1 : 0, std::memory_order_relaxed);
}

namespace {

// Error reports are about as long.
constexpr std::size_t usualLine = 2 * cacheLineSize;

// Whoever adds lines finds the places that the owner has just read in the owner's cache.
void prefetchLines(const char* place)
{
    for (std::size_t ahead = 0; ahead <= usualLine; ahead += cacheLineSize)
        prefetchForWriting(place + ahead);
}

// Length of the oldest line with its zero; all of \a fill when no zero ends it. The search
// begins behind the first byte, by contract, so a leading empty line goes with the next one.
int oldestLine(const char* lines, int fill)
{
    if (fill < 2)
        return fill;
    const void* const end = std::memchr(lines + 1, 0, static_cast<std::size_t>(fill - 1));
    return end ? static_cast<int>(static_cast<const char*>(end) - lines) + 1 : fill;
}

} // namespace

// Taking the oldest line away moves two bytes more than are left, by contract, as long as they
// lie in the buffer. Taking several away in one move gives the same bytes as one by one.
void LogImage::dropFront(int index, int bytes)
{
    const int old = fill(index);
    const int left = std::max(old - bytes, 0);
    char* const lines = half(index);
    // Whoever dies in the middle leaves an empty half behind and not a mixture. An exchange,
    // because the bytes must not move before it.
    word(fillAt[index]).exchange(0);
    if (left == 0)
        return;
    const int moved = std::min(left + 2, m_bufferSize - bytes);
    std::memmove(lines, lines + bytes, static_cast<std::size_t>(moved));
    setFill(index, left);
}

bool LogImage::append(int index, std::string_view line)
{
    if (line.size() >= static_cast<std::size_t>(m_bufferSize))
        return false;
    const int needed = static_cast<int>(line.size()) + 1;
    int used = fill(index);
    char* const lines = half(index);
    if (used > m_bufferSize - needed) {
        int cut = 0;
        while (used - cut > m_bufferSize - needed)
            cut += oldestLine(lines + cut, used - cut);
        dropFront(index, cut);
        used -= cut;
    }
    std::memcpy(lines + used, line.data(), line.size());
    lines[used + needed - 1] = '\0';
    setFill(index, used + needed);
    prefetchLines(lines + used + needed + usualLine);
    return true;
}

void LogImage::prefetchEnds() const
{
    for (const int index : {0, 1})
        prefetchLines(half(index) + fill(index));
}

void LogImage::keepNewest(int index, int bytes)
{
    const int used = fill(index);
    if (used <= bytes)
        return;
    // From the byte before the cut: it may be the zero that ends a line there.
    const int from = std::max(used - bytes - 1, 0);
    const void* const end =
        std::memchr(half(index) + from, 0, static_cast<std::size_t>(used - from));
    const int cut = end ? static_cast<int>(static_cast<const char*>(end) - half(index)) + 1 : used;
    dropFront(index, cut);
}

void LogImage::repair()
{
    for (const int index : {0, 1}) {
        int used = fill(index);
        while (used > 0 && half(index)[used - 1] != '\0')
            --used;
        setFill(index, used);
    }
}

} // namespace vlbase::logging
