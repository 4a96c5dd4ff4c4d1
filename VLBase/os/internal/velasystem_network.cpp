// The network adapters, and whether another host answers.

#include "echorequest.h"
#include "velasystem.h"

#include <VLBase/os/ping.h>
#include <VLBase/platform/lasterror.h>
#include <VLBase/platform/networkadapters.h>

#include <mutex>
#include <utility>
#include <vector>

namespace platform = vlbase::platform;

namespace {

/// Null as long as the system does not tell.
const std::vector<platform::NetworkAdapter>* knownAdapters()
{
    static std::mutex& lock = *new std::mutex;
    static const std::vector<platform::NetworkAdapter>* known = nullptr;
    const std::lock_guard<std::mutex> guard(lock);
    if (known == nullptr) {
        // Never destroyed, because static destructors may still ask, and callers keep the texts.
        if (auto read = platform::networkAdapters())
            known = new std::vector<platform::NetworkAdapter>(*std::move(read));
    }
    return known;
}

const platform::NetworkAdapter& adapterAt(int index)
{
    static const auto& none = *new platform::NetworkAdapter;
    const auto* adapters = knownAdapters();
    if (adapters == nullptr)
        return none;
    const auto position = static_cast<std::size_t>(index);
    if (index >= 0 && position < adapters->size())
        return (*adapters)[position];
    platform::setLastError(platform::Fault::NotFound);
    return none;
}

} // namespace

const char* VelaSystem::GetIdMac(int index)
{
    return adapterAt(index).hardwareAddress.c_str();
}

const char* VelaSystem::GetIpAddress(int index)
{
    return adapterAt(index).address.c_str();
}

Icmp_Echo_Result VelaSystem::Ping(int requestSize, int timeoutMs, const char* host)
{
    platform::EchoAnswer answer{platform::EchoStatus::InvalidAddress};
    if (const auto address = vlbase::firstAddress(QString::fromUtf8(host)))
        answer =
            vlbase::sendEcho(*address, static_cast<std::uint16_t>(requestSize),
                             std::chrono::milliseconds(timeoutMs), &vlbase::PingInterest::isOver);
    else
        platform::setLastError(platform::Fault::NotFound);

    Icmp_Echo_Result result;
    result.replies = answer.replies;
    result.roundTripTime = static_cast<quint32>(
        std::chrono::duration_cast<std::chrono::milliseconds>(answer.roundTrip).count());
    result.timeToLive = answer.timeToLive;
    result.message = vlbase::echoStatusText(answer.status);
    return result;
}
