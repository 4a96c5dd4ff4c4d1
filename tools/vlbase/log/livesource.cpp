#include "livesource.h"

#include <algorithm>
#include <utility>

namespace vlbase::tool::log {

LiveSource::LiveSource(logging::ViewerClaim claim)
    : m_claim(std::move(claim))
{
}

bool LiveSource::poll(std::string& lines)
{
    char* start = nullptr;
    long length = 0;
    // Writers wait from here to the release, so it is a copy into memory that is there already.
    m_reader.GetBuffer(&start, &length);
    const auto size = static_cast<std::size_t>(std::max(length, 0L));
    if (size > 0)
        lines.append(start, size);
    m_reader.ReleaseBuffer();
    m_mostSeen = std::max(m_mostSeen, size);
    return size > m_mostSeen / 4 && size > 64 * 1024;
}

} // namespace vlbase::tool::log
