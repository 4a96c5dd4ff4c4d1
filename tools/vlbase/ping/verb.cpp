#include "verb.h"

#include "roundtrips.h"
#include "tools/vlbase/commandline.h"
#include "tools/vlbase/exitstatus.h"
#include "tools/vlbase/platform/stopsignal.h"
#include "tools/vlbase/textoutput.h"

#include <VLBase/os/ping.h>
#include <VLBase/os/velaos.h>

#include <chrono>

namespace vlbase::tool::ping {
namespace {

using Clock = std::chrono::steady_clock;
using platform::StopSignal;
using Outcome = PingAnswer::Outcome;

struct Settings
{
    std::int64_t count; // 0: until stopped
    std::chrono::microseconds interval;
    std::chrono::milliseconds limit;
    std::uint16_t size;
};

std::chrono::microseconds toMicroseconds(double seconds)
{
    return std::chrono::microseconds(static_cast<std::int64_t>(seconds * 1e6));
}

Settings settingsOf(CommandLine& line)
{
    Settings settings{};
    settings.count = line.count(QStringLiteral("count"), 0, 1, 1'000'000'000);
    settings.interval = toMicroseconds(line.seconds(QStringLiteral("interval"), 1));
    settings.limit = std::chrono::ceil<std::chrono::milliseconds>(
        toMicroseconds(line.seconds(QStringLiteral("timeout"), 1)));
    settings.size = static_cast<std::uint16_t>(line.count(QStringLiteral("size"), 56, 0, 0xFFFF));
    return settings;
}

QString answerText(std::int64_t number, const PingAnswer& answer)
{
    if (answer.outcome != Outcome::Reply) {
        const QString general = QStringLiteral("general failure");
        return QStringLiteral("request %1: %2\n")
            .arg(number)
            .arg(answer.message.isEmpty() ? general : answer.message);
    }
    QString text = QStringLiteral("reply %1 in %2 ms")
                       .arg(number)
                       .arg(millisecondsText(static_cast<double>(answer.roundTrip.count())));
    if (answer.timeToLive > 0)
        text += QStringLiteral(", time-to-live %1").arg(answer.timeToLive);
    return text + u'\n';
}

/// One request after the other.
/// \return false when it was no use to go on.
bool pingAll(const CommandLine& line, const QHostAddress& address, const Settings& settings,
             RoundTrips& roundTrips)
{
    const StopSignal stop;
    auto next = Clock::now();
    for (std::int64_t number = 1; !StopSignal::requested(); ++number) {
        const PingAnswer answer =
            vlbase::ping(address, settings.size, settings.limit, &StopSignal::requested);
        if (answer.outcome == Outcome::Abandoned)
            break;
        if (answer.outcome == Outcome::NotSent) {
            line.tell(QStringLiteral("no echo request can be sent: %1")
                          .arg(qt_error_string(static_cast<int>(VelaOS::Get().GetLastError()))));
            return false;
        }
        if (answer.outcome == Outcome::Reply)
            roundTrips.addReply(answer.roundTrip);
        else
            roundTrips.addLoss();
        if (!print(answerText(number, answer)))
            return false;
        if (number == settings.count)
            break;
        next = std::max(next + settings.interval, Clock::now());
        stop.wait(std::chrono::ceil<std::chrono::microseconds>(next - Clock::now()));
    }
    return true;
}

int run(CommandLine& line)
{
    const QStringList hosts = line.positional();
    const Settings settings = settingsOf(line);
    if (hosts.size() != 1)
        line.addFault(QStringLiteral("it takes one host, a name or an address"));
    if (line.hasFault())
        return line.tellFault();

    const auto address = firstAddress(hosts.constFirst());
    if (!address) {
        line.tell(QStringLiteral("'%1' has no address").arg(hosts.constFirst()));
        return Failure;
    }
    if (!print(QStringLiteral("%1 (%2), %3 bytes of data\n")
                   .arg(hosts.constFirst(), address->toString())
                   .arg(settings.size)))
        return Failure;
    RoundTrips roundTrips;
    if (!pingAll(line, *address, settings, roundTrips) || !print(roundTrips.text()))
        return Failure;
    if (roundTrips.received() > 0)
        return Success;
    line.tell(QStringLiteral("no reply came"));
    return Failure;
}

} // namespace

Command pingCommand()
{
    Command command;
    command.group = QStringLiteral("ping");
    command.summary = QStringLiteral("asks whether a host answers, and how fast");
    command.usage = QStringLiteral("[OPTION...] HOST");
    command.about = QStringLiteral(
        "Sends echo requests to the first address of a host, IPv4 or IPv6, one after the other, "
        "and tells of each its round trip or why there was no reply. Ends after --count requests "
        "or with Ctrl-C, and then tells how many were answered and how fast. The last of the four "
        "times is the standard deviation. Windows tells whole milliseconds. Succeeds when a reply "
        "came.\n"
        "Linux lets users of the groups in net.ipv4.ping_group_range send echo requests, and "
        "whoever has CAP_NET_RAW.");
    command.options = {
        {QStringLiteral("count"), QStringLiteral("N"),
         QStringLiteral("Ends after so many requests. Without it goes on until Ctrl-C.")},
        {QStringLiteral("interval"), QStringLiteral("S"),
         QStringLiteral("Seconds from one request to the next (1). A late reply is waited for.")},
        {QStringLiteral("size"), QStringLiteral("B"),
         QStringLiteral("Bytes of data in a request (56), 0 to 65535.")},
        {QStringLiteral("timeout"), QStringLiteral("S"),
         QStringLiteral("Seconds to wait for a reply (1).")},
    };
    command.examples = {
        {QStringLiteral("is the station there"), QStringLiteral("vlbase ping --count 3 station7")},
        {QStringLiteral("ten a second with full packets"),
         QStringLiteral("vlbase ping --interval 0.1 --size 1472 10.1.2.3")},
    };
    command.run = run;
    return command;
}

} // namespace vlbase::tool::ping
