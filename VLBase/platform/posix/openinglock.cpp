#include "sharedfile.h"

#include <VLBase/platform/lasterror.h>
#include <VLBase/platform/openinglock.h>

#include <algorithm>
#include <thread>

namespace vlbase::platform {

class OpeningLock::Handle
{
public:
    ~Handle() { file.unlink(); }

    SharedFile file;
};

OpeningLock::OpeningLock(const std::string& name, std::chrono::milliseconds timeout)
{
    using namespace std::chrono;
    const auto end = steady_clock::now() + timeout;
    microseconds pause(20);
    SharedFile file;
    for (;;) {
        const SharedFile::Opened claimed = file.claim(name);
        if (claimed == SharedFile::Opened::Done)
            break;
        if (claimed == SharedFile::Opened::Refused)
            return;
        if (steady_clock::now() >= end) {
            setLastError(Fault::NoAnswer);
            return;
        }
        std::this_thread::sleep_for(pause);
        pause = std::min(pause * 2, microseconds(1000));
    }
    m_handle = std::make_unique<Handle>();
    m_handle->file = std::move(file);
}

OpeningLock::~OpeningLock() = default;

} // namespace vlbase::platform
