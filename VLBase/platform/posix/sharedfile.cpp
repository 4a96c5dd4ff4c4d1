#include "sharedfile.h"

#include "descriptor.h"

#include <VLBase/platform/lasterror.h>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <mutex>
#include <pthread.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace vlbase::platform {

namespace {

constexpr mode_t ownerOnly = 0600;

std::string pathOf(const std::string& name)
{
    return "/" + name + "." + std::to_string(geteuid());
}

SharedFile::Opened refused(int error)
{
    setLastError(static_cast<std::uint32_t>(error));
    return SharedFile::Opened::Refused;
}

struct flock wholeFile(short type)
{
    struct flock lock = {};
    lock.l_type = type;
    lock.l_whence = SEEK_SET;
    return lock;
}

/// The descriptors of all claims of this process. A forked child would keep their locks for as
/// long as it lives, so it closes them first thing.
class ClaimedDescriptors
{
public:
    static ClaimedDescriptors& instance()
    {
        static auto& descriptors = *new ClaimedDescriptors;
        return descriptors;
    }

    /// Held from before a claim's lock is taken until it is added: nobody forks in between.
    std::mutex& mutex() { return m_mutex; }
    void add(int descriptor) { m_descriptors.push_back(descriptor); }
    void close(int descriptor)
    {
        const std::lock_guard guard(m_mutex);
        m_descriptors.erase(std::remove(m_descriptors.begin(), m_descriptors.end(), descriptor),
                            m_descriptors.end());
        ::close(descriptor);
    }

private:
    ClaimedDescriptors()
    {
        pthread_atfork([] { instance().m_mutex.lock(); }, [] { instance().m_mutex.unlock(); },
                       [] { instance().closeAllInChild(); });
    }
    void closeAllInChild()
    {
        for (const int descriptor : m_descriptors)
            ::close(descriptor);
        m_descriptors.clear();
        m_mutex.unlock();
    }

    std::mutex m_mutex;
    std::vector<int> m_descriptors;
};

} // namespace

SharedFile::~SharedFile()
{
    close();
}

SharedFile::SharedFile(SharedFile&& other) noexcept
    : m_descriptor(std::exchange(other.m_descriptor, -1))
    , m_process(other.m_process)
    , m_isClaim(other.m_isClaim)
    , m_path(std::move(other.m_path))
{
}

SharedFile& SharedFile::operator=(SharedFile&& other) noexcept
{
    std::swap(m_descriptor, other.m_descriptor);
    std::swap(m_process, other.m_process);
    std::swap(m_isClaim, other.m_isClaim);
    std::swap(m_path, other.m_path);
    return *this;
}

SharedFile::Opened SharedFile::open(const std::string& name, bool readOnly)
{
    close();
    m_path = pathOf(name);
    m_process = getpid();
    const int access = readOnly ? O_RDONLY : O_RDWR;
    // Not blocking: a pipe under this name must not keep us.
    m_descriptor = behindStandardStreams(
        shm_open(m_path.c_str(), access | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0));
    if (m_descriptor < 0)
        return errno == ENOENT ? Opened::Absent : refused(errno);
    if (!isOurs()) {
        close();
        return refused(EPERM);
    }
    return Opened::Done;
}

SharedFile::Opened SharedFile::create(const std::string& name)
{
    close();
    m_path = pathOf(name);
    m_process = getpid();
    m_descriptor = behindStandardStreams(
        shm_open(m_path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, ownerOnly));
    if (m_descriptor < 0)
        return refused(errno);
    fchmod(m_descriptor, ownerOnly); // whatever the umask took away
    return Opened::Done;
}

SharedFile::Opened SharedFile::claim(const std::string& name)
{
    close();
    ClaimedDescriptors& claimed = ClaimedDescriptors::instance();
    const std::lock_guard guard(claimed.mutex());
    // A holder removes the name before it lets go. Whoever got hold of the nameless rest starts
    // over; the bound is for a crowd in which that happens to the same one again and again.
    for (int attempt = 0; attempt < 64; ++attempt) {
        Opened opened = open(name);
        if (opened == Opened::Absent)
            opened = create(name);
        if (opened != Opened::Done && errno == EEXIST)
            continue;
        if (opened != Opened::Done)
            return Opened::Refused;
        const bool locked = tryLock(LockType::Exclusive);
        if (!isNamed())
            continue;
        if (!locked) {
            close();
            return Opened::Absent;
        }
        m_isClaim = true;
        claimed.add(m_descriptor);
        return Opened::Done;
    }
    close();
    return Opened::Absent;
}

bool SharedFile::isForked() const
{
    return m_process != getpid();
}

bool SharedFile::tryLock(LockType type)
{
    if (isForked())
        return false;
    struct flock lock = wholeFile(type == LockType::Shared ? F_RDLCK : F_WRLCK);
    return fcntl(m_descriptor, F_OFD_SETLK, &lock) == 0;
}

bool SharedFile::isLockedByOthers() const
{
    struct flock lock = wholeFile(F_WRLCK);
    return fcntl(m_descriptor, F_OFD_GETLK, &lock) == 0 && lock.l_type != F_UNLCK;
}

bool SharedFile::isNamed() const
{
    struct stat status = {};
    return fstat(m_descriptor, &status) == 0 && status.st_nlink > 0;
}

void SharedFile::unlink()
{
    if (!isForked())
        shm_unlink(m_path.c_str());
}

long long SharedFile::size() const
{
    struct stat status = {};
    return fstat(m_descriptor, &status) == 0 ? status.st_size : -1;
}

void SharedFile::close()
{
    const int descriptor = std::exchange(m_descriptor, -1);
    const bool isClaim = std::exchange(m_isClaim, false);
    if (descriptor < 0)
        return;
    if (!isClaim)
        ::close(descriptor);
    else if (!isForked())
        ClaimedDescriptors::instance().close(descriptor);
}

bool SharedFile::isOurs() const
{
    struct stat status = {};
    return fstat(m_descriptor, &status) == 0 && S_ISREG(status.st_mode) &&
           status.st_uid == geteuid() && (status.st_mode & 07777) == ownerOnly;
}

} // namespace vlbase::platform
