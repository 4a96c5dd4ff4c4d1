#include <VLBase/platform/namedmapping.h>
#include <VLBase/platform/nativemutex.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <ctime>
#include <pthread.h>
#include <utility>

#ifdef __SANITIZE_THREAD__
#include <sanitizer/tsan_interface.h>
#endif

namespace vlbase::platform {

namespace {

constexpr char signature[8] = {'V', 'L', 'M', 'u', 't', 'e', 'x', '1'};

// What is in the shared memory. The signature comes last into a new one.
struct SharedMutex
{
    char signature[8];
    std::uint32_t mutexSize;         // programs of another C library must stay out
    std::atomic<std::uint32_t> held; // 0 or 1, for whoever looks from outside
    alignas(64) pthread_mutex_t mutex;
};

bool makeMutex(pthread_mutex_t* mutex)
{
    pthread_mutexattr_t attributes;
    if (pthread_mutexattr_init(&attributes) != 0)
        return false;
    const bool made = pthread_mutexattr_setpshared(&attributes, PTHREAD_PROCESS_SHARED) == 0 &&
                      pthread_mutexattr_setrobust(&attributes, PTHREAD_MUTEX_ROBUST) == 0 &&
                      pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE) == 0 &&
                      pthread_mutex_init(mutex, &attributes) == 0;
    pthread_mutexattr_destroy(&attributes);
    return made;
}

const SharedMutex* checked(const NamedMapping& memory)
{
    const auto* shared = reinterpret_cast<const SharedMutex*>(memory.data());
    const bool good = memory.size() == sizeof(SharedMutex) &&
                      std::memcmp(shared->signature, signature, sizeof signature) == 0 &&
                      shared->mutexSize == sizeof(pthread_mutex_t);
    return good ? shared : nullptr;
}

// No single sleep is longer: a waiter that is killed after it was woken, but before it took the
// mutex, takes the wake-up of the others with it, and they would sleep beside a free mutex.
constexpr std::chrono::milliseconds longestSleep(10);

timespec monotonicTime(std::chrono::steady_clock::time_point time)
{
    const std::chrono::nanoseconds sinceStart = time.time_since_epoch();
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(sinceStart);
    return {static_cast<time_t>(seconds.count()),
            static_cast<long>((sinceStart - seconds).count())};
}

int lockUntil(pthread_mutex_t* mutex, std::chrono::steady_clock::time_point end)
{
    int status = ETIMEDOUT;
    for (bool isLast = false; status == ETIMEDOUT && !isLast;) {
        const auto wake = std::chrono::steady_clock::now() + longestSleep;
        isLast = wake >= end;
        const timespec time = monotonicTime(std::min(wake, end));
        status = pthread_mutex_clocklock(mutex, CLOCK_MONOTONIC, &time);
    }
#ifdef __SANITIZE_THREAD__
    // The thread sanitizer of GCC 12 does not see a lock that was waited for in this way.
    if (status == 0 || status == EOWNERDEAD) {
        __tsan_mutex_pre_lock(mutex, 0);
        __tsan_mutex_post_lock(mutex, 0, 0);
    }
#endif
    return status;
}

// Tells the processor that this is a loop of waiting.
void relax()
{
#if defined(__x86_64__) || defined(__i386__)
    __builtin_ia32_pause();
#endif
}

// The holder is mostly done within a microsecond, sooner than the system could put a thread to
// sleep and wake it. So a few looks come first, and a try only when it seems free. They grow
// rarer: each look takes the holder's cache lines away, and a holder that is left alone for some
// microseconds adds many lines at the cost of one that changes hands.
int lockSoon(SharedMutex* shared)
{
    constexpr int firstPauses = 8;
    constexpr int mostPauses = 256;
    constexpr int looks = 7;
    int status = pthread_mutex_trylock(&shared->mutex);
    int pauses = firstPauses;
    for (int look = 0; status == EBUSY && look < looks; ++look) {
        for (int pause = 0; pause < pauses; ++pause)
            relax();
        pauses = std::min(2 * pauses, mostPauses);
        if (shared->held.load(std::memory_order_relaxed) == 0)
            status = pthread_mutex_trylock(&shared->mutex);
    }
    return status;
}

} // namespace

class NativeMutex::Handle
{
public:
    SharedMutex* shared() const { return reinterpret_cast<SharedMutex*>(memory.data()); }

    NamedMapping memory;
};

NativeMutex::NativeMutex() = default;
NativeMutex::~NativeMutex() = default;
NativeMutex::NativeMutex(NativeMutex&& other) noexcept = default;
NativeMutex& NativeMutex::operator=(NativeMutex&& other) noexcept = default;

bool NativeMutex::open(const std::string& name)
{
    NamedMapping memory;
    if (memory.open(name) != NamedMapping::Opened::Done || !checked(memory))
        return false;
    m_handle = std::make_unique<Handle>(Handle{std::move(memory)});
    return true;
}

bool NativeMutex::create(const std::string& name)
{
    NamedMapping memory;
    switch (memory.open(name)) {
    case NamedMapping::Opened::Done:
        if (!checked(memory))
            return false;
        break;
    case NamedMapping::Opened::Absent: {
        if (!memory.create(name, sizeof(SharedMutex)))
            return false;
        auto* const shared = reinterpret_cast<SharedMutex*>(memory.data());
        if (!makeMutex(&shared->mutex))
            return false;
        shared->mutexSize = sizeof(pthread_mutex_t);
        std::memcpy(shared->signature, signature, sizeof signature);
        break;
    }
    case NamedMapping::Opened::Refused:
        return false;
    }
    m_handle = std::make_unique<Handle>(Handle{std::move(memory)});
    return true;
}

LockResult NativeMutex::lock(std::chrono::milliseconds timeout)
{
    if (!m_handle)
        return LockResult::Failed;
    SharedMutex* const shared = m_handle->shared();
    int status = lockSoon(shared);
    if (status == EBUSY)
        status = lockUntil(&shared->mutex, std::chrono::steady_clock::now() + timeout);
    switch (status) {
    case 0:
        shared->held.store(1, std::memory_order_relaxed);
        return LockResult::Owned;
    case EOWNERDEAD:
        // At once: a mutex that is let go without this can never be locked again.
        pthread_mutex_consistent(&shared->mutex);
        shared->held.store(1, std::memory_order_relaxed);
        return LockResult::OwnedAfterDeath;
    case ETIMEDOUT:
        return LockResult::TimedOut;
    default:
        return LockResult::Failed;
    }
}

void NativeMutex::unlock()
{
    SharedMutex* const shared = m_handle->shared();
    shared->held.store(0, std::memory_order_relaxed);
    pthread_mutex_unlock(&shared->mutex);
}

void NativeMutex::leak()
{
    static_cast<void>(m_handle.release());
}

bool NativeMutex::isHeld(const std::string& name)
{
    NamedMapping memory;
    if (memory.open(name, NamedMapping::Access::Glance) != NamedMapping::Opened::Done)
        return false;
    const SharedMutex* const shared = checked(memory);
    return shared && shared->held.load(std::memory_order_relaxed) != 0;
}

} // namespace vlbase::platform
