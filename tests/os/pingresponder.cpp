#include "pingresponder.h"

#include <arpa/inet.h>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <sched.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

namespace {

void write(const char* file, const QByteArray& text)
{
    const int descriptor = open(file, O_WRONLY);
    [[maybe_unused]] const auto put =
        ::write(descriptor, text.constData(), static_cast<std::size_t>(text.size()));
    close(descriptor);
}

bool unshareNetwork()
{
    if (unshare(CLONE_NEWNET) == 0)
        return true;
    const QByteArray user = QByteArray::number(getuid());
    const QByteArray group = QByteArray::number(getgid());
    if (unshare(CLONE_NEWUSER | CLONE_NEWNET) != 0)
        return false;
    write("/proc/self/setgroups", "deny");
    write("/proc/self/uid_map", "0 " + user + " 1");
    write("/proc/self/gid_map", "0 " + group + " 1");
    return true;
}

/// RFC 1071, of a message whose own sum is 0.
void putSum(QByteArray& message)
{
    quint32 sum = 0;
    for (qsizetype i = 0; i < message.size(); ++i)
        sum += static_cast<quint32>(static_cast<quint8>(message[i])) << (i % 2 == 0 ? 8 : 0);
    sum = (sum & 0xFFFF) + (sum >> 16);
    sum = ~((sum & 0xFFFF) + (sum >> 16));
    message[2] = static_cast<char>(sum >> 8);
    message[3] = static_cast<char>(sum);
}

/// \param header the IP header of the request, which error messages quote
QByteArray messageFor(const Shot& shot, const QByteArray& header, QByteArray request, bool isV6)
{
    const bool isError = shot.what == Shot::Error || shot.what == Shot::OthersError;
    if (shot.what == Shot::OtherSequence || shot.what == Shot::OthersError)
        request[7] = static_cast<char>(request[7] ^ 1);
    if (isError) {
        QByteArray message(8, '\0');
        message[0] = static_cast<char>(shot.type);
        message[1] = static_cast<char>(shot.code);
        message[6] = isV6 ? 5 : 0; // the greatest size that would go, 1280
        message += header + request.left(8);
        putSum(message);
        return message;
    }
    request[0] = static_cast<char>(isV6 ? 129 : 0);
    request[2] = request[3] = '\0';
    if (shot.what == Shot::OtherId)
        request[5] = static_cast<char>(request[5] ^ 1);
    if (shot.what == Shot::OtherData)
        request.back() = static_cast<char>(request.back() ^ 1);
    if (shot.what == Shot::Shortened)
        request.chop(1);
    putSum(request);
    if (shot.what == Shot::BadSum)
        request[2] = static_cast<char>(request[2] ^ 1);
    return request;
}

QByteArray ip6Header(const in6_addr& from, qsizetype size)
{
    QByteArray header(40, '\0');
    header[0] = 0x60;
    header[5] = static_cast<char>(size);
    header[6] = IPPROTO_ICMPV6;
    header[7] = 64;
    in6_addr to{};
    inet_pton(AF_INET6, "fd77::2", &to);
    std::memcpy(header.data() + 8, &from, sizeof from);
    std::memcpy(header.data() + 24, &to, sizeof to);
    return header;
}

void answer(int socket, bool isV6)
{
    QByteArray packet(2000, '\0');
    sockaddr_storage from{};
    socklen_t fromSize = sizeof from;
    packet.resize(
        recvfrom(socket, packet.data(), 2000, 0, reinterpret_cast<sockaddr*>(&from), &fromSize));
    QByteArray header = packet.left(isV6 ? 0 : 4 * (packet[0] & 0xF));
    const QByteArray request = packet.mid(header.size());
    if (isV6)
        header = ip6Header(reinterpret_cast<sockaddr_in6&>(from).sin6_addr, request.size());
    const auto size = static_cast<std::size_t>(request.size() - 8);
    if (static_cast<quint8>(request[0]) != (isV6 ? 128 : 8) || size >= scenarios(isV6).size())
        return;
    for (const Shot& shot : scenarios(isV6)[size].shots) {
        std::this_thread::sleep_for(std::chrono::milliseconds(shot.delayMs));
        const QByteArray message = messageFor(shot, header, request, isV6);
        sendto(socket, message.constData(), static_cast<std::size_t>(message.size()), 0,
               reinterpret_cast<sockaddr*>(&from), fromSize);
    }
}

[[noreturn]] void beStation(int ready)
{
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    const bool isApart = unshare(CLONE_NEWNET) == 0;
    pollfd sockets[] = {{socket(AF_INET, SOCK_RAW, IPPROTO_ICMP), POLLIN, 0},
                        {socket(AF_INET6, SOCK_RAW, IPPROTO_ICMPV6), POLLIN, 0}};
    if (!isApart || sockets[0].fd < 0 || sockets[1].fd < 0 || ::write(ready, "r", 1) != 1)
        _exit(1);
    while (poll(sockets, 2, -1) > 0) {
        for (const pollfd& each : sockets) {
            if (each.revents != 0)
                answer(each.fd, &each == &sockets[1]);
        }
    }
    _exit(1);
}

struct ErrorCase
{
    int type;
    int code;
    const char* message;
};

std::vector<Scenario> makeScenarios(bool isV6, const std::vector<ErrorCase>& errors)
{
    std::vector<Shot> noise = {{Shot::OtherId},
                               {Shot::OtherSequence},
                               {Shot::OtherData},
                               {Shot::Shortened},
                               {Shot::OthersError, isV6 ? 1 : 3}};
    if (!isV6) // sums of IPv6 are the system's
        noise.push_back({Shot::BadSum});
    std::vector<Shot> ending = noise;
    ending.push_back({Shot::Reply, 0, 0, 60});
    const std::vector<Shot> lasting(60, {Shot::OtherData, 0, 0, 10});
    std::vector<Scenario> all = {{{{Shot::Reply}}, 1, ""},
                                 {ending, 1, ""},
                                 {noise, 0, "IP Timeout."},
                                 {lasting, 0, "IP Timeout."},
                                 {{}, 0, "IP Timeout."}};
    for (const ErrorCase& error : errors)
        all.push_back({{{Shot::Error, error.type, error.code}}, 0, error.message});
    return all;
}

} // namespace

const std::vector<Scenario>& scenarios(bool isV6)
{
    static const std::vector<Scenario> v4 =
        makeScenarios(false, {{3, 0, "Destination network unreachable."},
                              {3, 1, "Destination host unreachable."},
                              {3, 2, "Destination protocol unreachable."},
                              {3, 3, "Destination port unreachable."},
                              {3, 4, "IP packet too big."},
                              {3, 5, "IP BAD ROUTE"},
                              {3, 13, "Destination host unreachable."},
                              {4, 0, "IP SOURCE QUENCH"},
                              {11, 0, "TTL expired."},
                              {12, 0, "IP PARAM PROBLEM"}});
    static const std::vector<Scenario> v6 =
        makeScenarios(true, {{1, 0, "Destination network unreachable."},
                             {1, 1, "Destination host unreachable."},
                             {1, 3, "Destination host unreachable."},
                             {1, 4, "Destination port unreachable."},
                             {2, 0, "IP packet too big."},
                             {3, 0, "TTL expired."},
                             {4, 0, "IP PARAM PROBLEM"}});
    return isV6 ? v6 : v4;
}

bool shell(const QByteArray& command)
{
    return std::system(command.constData()) == 0;
}

QByteArray makePrivateNetwork()
{
    if (!shell("command -v ip nsenter >/dev/null"))
        return "there is no ip or no nsenter";
    if (!unshareNetwork())
        return "this user may not make a network of its own";
    int ready[2];
    if (pipe2(ready, O_CLOEXEC) != 0)
        return "no pipe";
    const pid_t station = fork();
    if (station == 0)
        beStation(ready[1]);
    close(ready[1]);
    char byte = 0;
    const bool isReady = read(ready[0], &byte, 1) == 1;
    close(ready[0]);
    if (!isReady)
        return "the station has no raw sockets";

    const QByteArray pid = QByteArray::number(station);
    const bool stands = shell("exec 2>/dev/null; set -e; ip link set lo up; "
                              "ip link add near address 02:00:00:00:00:0a type veth "
                              "peer name far netns " +
                              pid +
                              "; ip addr add 10.77.0.1/24 dev near; "
                              "ip -6 addr add fd77::1/64 dev near nodad; ip link set near up; "
                              "nsenter -t " +
                              pid +
                              " -n sh -e -c '"
                              "ip addr add 10.77.0.2/24 dev far; "
                              "ip -6 addr add fd77::2/64 dev far nodad; ip link set far up; "
                              "cd /proc/sys/net; echo 1 > ipv4/icmp_echo_ignore_all; "
                              "echo 1 > ipv6/icmp/echo_ignore_all; echo 1 > ipv4/ip_forward; "
                              "echo 0 > ipv4/icmp_ratelimit; echo 0 > ipv6/icmp/ratelimit; "
                              "echo 1 > ipv6/conf/all/forwarding; "
                              "ip route add unreachable 10.78.1.0/24; "
                              "ip route add prohibit 10.78.2.0/24; "
                              "ip route add 10.78.4.0/24 via 10.77.0.1; "
                              "ip -6 route add fd78:4::/64 via fd77::1'; "
                              "ip route add 10.78.0.0/16 via 10.77.0.2; "
                              "ip -6 route add fd78::/16 via fd77::2; "
                              "echo 1 > /proc/sys/net/ipv4/ip_default_ttl; "
                              "ip route add unreachable 10.79.1.0/24; "
                              "ip route add prohibit 10.79.2.0/24; "
                              "ip route add blackhole 10.79.3.0/24; "
                              "echo 1 > /proc/sys/net/ipv6/conf/all/forwarding");
    return stands ? QByteArray() : QByteArray("the network cannot be set up");
}
