#include "logfile.h"

#include <algorithm>
#include <cstring>

namespace vlbase::logreading {
namespace {

constexpr std::size_t blockBytes = 1024 * 1024;
constexpr int blocksAtATime = 4;
// A longer line is shown in pieces, so that no file makes the program grow.
constexpr std::size_t longestLine = 16 * 1024 * 1024;
constexpr std::size_t rememberedBytes = 64;

} // namespace

std::shared_ptr<LogFile> LogFile::open(const std::string& name, QString& reason)
{
    auto log = std::make_shared<LogFile>();
    if (!log->m_file.open(name, tool::platform::NativeFile::Mode::Read)) {
        reason = qt_error_string();
        return nullptr;
    }
    char byte = 0;
    if (!log->m_file.isRegular() || log->m_file.readAt(0, &byte, 1) < 0) {
        reason = log->m_file.isRegular() ? qt_error_string() : QStringLiteral("it is no file");
        return nullptr;
    }
    log->m_identity = log->m_file.identity();
    return log;
}

void LogFile::startAt(std::int64_t place)
{
    m_index.startAt(place);
    m_indexed = place;
}

std::shared_ptr<LogFile> LogFile::reopened()
{
    auto again = std::make_shared<LogFile>();
    if (!again->m_file.openAgain(m_file))
        return nullptr;
    again->m_identity = m_identity;
    return again;
}

/// Whether the bytes before the place that is reached are those that were read.
bool LogFile::isStillThere() const
{
    const std::int64_t reached = m_indexed + static_cast<std::int64_t>(m_rest.size());
    if (m_file.size() < reached)
        return false;
    char bytes[rememberedBytes];
    const auto size = static_cast<std::int64_t>(m_lastRead.size());
    return m_file.readAt(m_indexed - size, bytes, m_lastRead.size()) == size &&
           std::memcmp(bytes, m_lastRead.data(), m_lastRead.size()) == 0;
}

LogFile::Update LogFile::update()
{
    const std::int64_t size = m_file.size();
    const std::int64_t before = m_index.size();
    std::int64_t place = m_indexed + static_cast<std::int64_t>(m_rest.size());
    if (size == place)
        return Update::Unchanged;
    if (!isStillThere())
        return Update::Replaced;
    m_buffer.resize(blockBytes);
    bool isAtEnd = false;
    for (int i = 0; i < blocksAtATime && !isAtEnd; ++i) {
        const std::int64_t got = m_file.readAt(place, m_buffer.data(), m_buffer.size());
        if (got < 0) {
            m_errorText = qt_error_string();
            return Update::Failed;
        }
        isAtEnd = got == 0;
        const std::string_view data(m_buffer.data(), static_cast<std::size_t>(got));
        indexLines(data, place);
        place += got;
    }
    if (!isAtEnd)
        return Update::More;
    return m_index.size() > before ? Update::Grown : Update::Unchanged;
}

void LogFile::indexLines(std::string_view data, std::int64_t start)
{
    const char* const first = data.data();
    while (!data.empty()) {
        const void* const feed = std::memchr(data.data(), '\n', data.size());
        const std::size_t length =
            feed ? static_cast<std::size_t>(static_cast<const char*>(feed) - data.data()) + 1
                 : data.size();
        std::string_view line = data.substr(0, length);
        data.remove_prefix(length);
        if (!m_rest.empty() || !feed) {
            m_rest += line;
            line = m_rest;
        }
        if (!feed && line.size() < longestLine)
            return;
        const std::int64_t end = start + (data.data() - first);
        m_index.append(line, end);
        const std::string_view tail =
            line.substr(line.size() - std::min(line.size(), rememberedBytes));
        m_lastRead.assign(tail);
        m_indexed.store(end, std::memory_order_relaxed);
        m_rest.clear();
    }
}

void LogFile::takeHalfLine()
{
    if (m_rest.empty())
        return;
    const std::int64_t end = m_indexed + static_cast<std::int64_t>(m_rest.size());
    m_index.append(m_rest, end);
    m_lastRead = m_rest.substr(m_rest.size() - std::min(m_rest.size(), rememberedBytes));
    m_rest.clear();
    m_indexed = end;
}

} // namespace vlbase::logreading
