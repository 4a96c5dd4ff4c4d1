// Echo requests to this machine, beside fping's: the round trip as each of them tells it, and how
// long a call of ours lasts with all that it does around it.

#include "../series.h"

#include <VLBase/os/ping.h>
#include <VLBase/os/velaos.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <sstream>
#include <string>
#include <thread>

namespace {

using Clock = std::chrono::steady_clock;
using Microseconds = std::chrono::duration<double, std::micro>;

constexpr int requests = 200;
constexpr int repetitions = 9;
constexpr auto pace = std::chrono::milliseconds(2);
constexpr std::uint16_t bytes = 56; // fping's

/// The median of one repetition; nothing when replies were missing.
double median(const bench::Series& times)
{
    return times.values().size() == requests ? times.median() : 0;
}

double paced(const std::function<double()>& ping)
{
    bench::Series times;
    auto next = Clock::now();
    for (int i = 0; i < requests; ++i) {
        if (const double time = ping(); time > 0)
            times.add(time);
        std::this_thread::sleep_until(next += pace);
    }
    return median(times);
}

double roundTrip()
{
    const auto answer =
        vlbase::ping(QHostAddress(QHostAddress::LocalHost), bytes, std::chrono::seconds(1));
    return answer.outcome == vlbase::PingAnswer::Outcome::Reply
               ? Microseconds(answer.roundTrip).count()
               : 0;
}

double wholeCall()
{
    const auto begin = Clock::now();
    const bool isAnswered = VelaOS::Get().Ping(bytes, 1000, "127.0.0.1").replies == 1;
    return isAnswered ? Microseconds(Clock::now() - begin).count() : 0;
}

/// "127.0.0.1 : 0.033 0.031 -", milliseconds, a hyphen for a lost one.
double fping()
{
    std::ostringstream command;
    command << "fping -q -C " << requests << " -p " << pace.count() << " -b " << bytes
            << " 127.0.0.1 2>&1";
    std::FILE* output = ::popen(command.str().c_str(), "r");
    if (output == nullptr)
        return 0;
    std::string text(requests * 16, '\0');
    text.resize(std::fread(text.data(), 1, text.size(), output));
    ::pclose(output);

    std::istringstream words(text.substr(text.find(':') + 1));
    bench::Series times;
    for (std::string word; words >> word;) {
        if (const double milliseconds = std::atof(word.c_str()); milliseconds > 0)
            times.add(milliseconds * 1000);
    }
    return median(times);
}

} // namespace

int main()
{
    struct Row
    {
        const char* name;
        std::function<double()> measure;
        bench::Series series;
    };
    Row rows[] = {{"round trip", [] { return paced(roundTrip); }, {}},
                  {"round trip of fping", fping, {}},
                  {"whole call of Ping", [] { return paced(wholeCall); }, {}}};
    for (int i = 0; i < repetitions; ++i) {
        for (Row& row : rows) {
            if (const double value = row.measure(); value > 0)
                row.series.add(value);
        }
    }
    std::printf("\n127.0.0.1, %d requests of %d bytes, one each %d ms\n\n| | us |\n|---|--:|\n",
                requests, int{bytes}, static_cast<int>(pace.count()));
    for (const Row& row : rows)
        std::printf("| %-20s | %-22s |\n", row.name, row.series.text(1).c_str());
    const bench::Series besideFping = bench::ratio(rows[0].series, rows[1].series);
    std::printf("| %-20s | %-22s |\n", "ratio, at most 1.5", besideFping.text(2).c_str());
    return 0;
}
