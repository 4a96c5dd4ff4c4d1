#include "namedmutex.h"

namespace vlbase::platform {

namespace {

// Never given twice, unlike the system's thread numbers: a thread that ended while it held the
// mutex must not be taken for a later one.
std::uint64_t threadNumber()
{
    static std::atomic<std::uint64_t> last{0};
    thread_local std::uint64_t number = 0;
    if (number == 0)
        number = ++last;
    return number;
}

} // namespace

NamedMutex::NamedMutex() = default;

NamedMutex::~NamedMutex()
{
    while (unlock()) {
    }
    // A mutex that is unmapped while a thread holds it stays locked for good, because the
    // system then no longer finds it when that thread ends.
    if (m_holder.load(std::memory_order_relaxed) != 0)
        m_native.leak();
}

bool NamedMutex::open(const std::string& name)
{
    return m_native.open(name);
}

bool NamedMutex::create(const std::string& name)
{
    return m_native.create(name);
}

LockResult NamedMutex::lock(std::chrono::milliseconds timeout)
{
    const std::uint64_t self = threadNumber();
    if (m_holder.load(std::memory_order_relaxed) == self) {
        ++m_depth;
        return LockResult::Owned;
    }
    const LockResult result = m_native.lock(timeout);
    if (result == LockResult::Owned || result == LockResult::OwnedAfterDeath) {
        m_holder.store(self, std::memory_order_relaxed);
        m_depth = 1;
    }
    return result;
}

bool NamedMutex::unlock()
{
    if (m_holder.load(std::memory_order_relaxed) != threadNumber())
        return false;
    if (--m_depth == 0) {
        m_holder.store(0, std::memory_order_relaxed);
        m_native.unlock();
    }
    return true;
}

bool NamedMutex::isHeldByThisThread() const
{
    return m_holder.load(std::memory_order_relaxed) == threadNumber();
}

bool NamedMutex::isHeld(const std::string& name)
{
    return NativeMutex::isHeld(name);
}

} // namespace vlbase::platform
