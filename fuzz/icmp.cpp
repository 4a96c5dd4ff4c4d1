// Packets that claim to be about an echo request: no byte behind their end may be looked at, and
// nothing but the request's own reply or an error message that quotes it is news.

#include <VLBase/platform/posix/icmpmessage.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <memory>

namespace {

using vlbase::platform::EchoStatus;
using vlbase::platform::IcmpMessage;
using vlbase::platform::IpVersion;

void require(bool holds)
{
    if (!holds)
        std::abort();
}

void check(const IcmpMessage& request, IpVersion version, IcmpMessage::Framing framing,
           const std::uint8_t* packet, std::size_t size)
{
    const auto news = request.read(packet, size, framing);
    if (!news)
        return;
    const auto& bytes = request.bytes();
    // What both a reply and a quotation have in them: id and sequence.
    const auto* end = packet + size;
    require(std::search(packet, end, bytes.begin() + 4, bytes.begin() + 8) != end);
    if (news->status == EchoStatus::Success)
        require(std::search(packet, end, bytes.begin() + 4, bytes.end()) != end);
    require(framing == IcmpMessage::Framing::WithIpHeader || news->timeToLive == 0);
    require(news->status == EchoStatus::Success || size >= (version == IpVersion::V4 ? 36U : 56U));
}

} // namespace

/// The input is how the packet came, the size of the request's data, and the packet.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 2)
        return 0;
    const IpVersion version = (data[0] & 1) == 0 ? IpVersion::V4 : IpVersion::V6;
    const auto framing =
        (data[0] & 2) == 0 ? IcmpMessage::Framing::Bare : IcmpMessage::Framing::WithIpHeader;
    const IcmpMessage request(version, 0x1234, 0x5678, 0x9ABCDEF0, data[1]);
    // A copy without room behind it, which the sanitizer watches.
    const std::size_t packetSize = size - 2;
    const std::unique_ptr<std::uint8_t[]> packet(new std::uint8_t[packetSize]);
    std::copy(data + 2, data + size, packet.get());
    check(request, version, framing, packet.get(), packetSize);
    return 0;
}
