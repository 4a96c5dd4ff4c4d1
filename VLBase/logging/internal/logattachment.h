#pragma once

#include <VLBase/logging/internal/logimage.h>
#include <VLBase/logging/internal/logreserve.h>
#include <VLBase/platform/namedclaim.h>
#include <VLBase/platform/namedmapping.h>
#include <VLBase/platform/namedmutex.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace vlbase::logging {

/// The process's one attachment to the shared log: the mapping, its mutex, and the reserve
/// beside it when there is one. Made and destroyed under the opening lock.
class LogAttachment
{
public:
    /// Joins an existing log; null when there is none or it is damaged, and \a absent tells
    /// which.
    static std::shared_ptr<LogAttachment> join(bool& absent);

    static std::shared_ptr<LogAttachment> create(int bufferSize);

    /// Makes the reserve, unless there is one. Where the memory has no room for a staging ring of
    /// \a reserveBytes, a smaller one is made, and none when not even two drains would fit.
    void ensureReserve(int reserveBytes);

    LogImage& image() { return m_image; }
    LogReserve* reserve() { return m_reserve ? &*m_reserve : nullptr; }
    LogStaging* sharedStaging();

    /// Takes the mutex by the rule of the 2000 ms. Once they were over in vain, which empties
    /// both halves, the mutex is only tried, and `Failed` is the answer, until it was free once.
    platform::LockResult lock();
    bool isHolderHanging() const { return m_isHolderHanging.load(std::memory_order_relaxed); }
    void unlock() { m_mutex.unlock(); }
    bool isLockedByThisThread() const { return m_mutex.isHeldByThisThread(); }

    struct Taken
    {
        std::int32_t number;
        std::optional<std::uint64_t> position; ///< none without a reserve
    };
    Taken takeNumber();

    /// Appends a line to both halves; with a position it gets its seal.
    void add(std::string_view line, std::optional<std::uint64_t> position);

private:
    void repair();

    platform::NamedMapping m_mapping;
    platform::NamedMutex m_mutex;
    std::atomic<bool> m_isHolderHanging{false};
    platform::NamedMapping m_reserveMapping;
    LogImage m_image;
    std::optional<LogReserve> m_reserve;
};

} // namespace vlbase::logging
