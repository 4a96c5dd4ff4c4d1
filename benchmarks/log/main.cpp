// Processes that write, and one that receives: the shared log beside its peers.

#include "contest.h"
#include "line.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <getopt.h>
#include <sstream>

namespace {

constexpr char usage[] =
    R"(usage: vlbase_bench_log [OPTION...]

  --lines N         lines of one run, of all writers together (400000)
  --repetitions N   interleaved repetitions of every measurement (7)
  --writers LIST    numbers of writing processes (1,2,4)
  --folder PATH     where the file loggers write ($TMPDIR, or /tmp)
)";

bool readWriters(const char* text, std::vector<int>& writers)
{
    std::istringstream list(text);
    std::vector<int> read;
    for (std::string item; std::getline(list, item, ',');)
        read.push_back(std::atoi(item.c_str()));
    for (const int count : read) {
        if (count < 1 || count > bench::maxWriters)
            return false;
    }
    writers = read;
    return !writers.empty();
}

bool readOptions(int argc, char** argv, bench::Options& options)
{
    const char* temporary = std::getenv("TMPDIR");
    options.folder = temporary && *temporary ? temporary : "/tmp";
    const option known[] = {{"lines", required_argument, nullptr, 'l'},
                            {"repetitions", required_argument, nullptr, 'r'},
                            {"writers", required_argument, nullptr, 'w'},
                            {"folder", required_argument, nullptr, 'f'},
                            {nullptr, 0, nullptr, 0}};
    for (int given; (given = getopt_long(argc, argv, "", known, nullptr)) != -1;) {
        switch (given) {
        case 'l':
            options.lines = std::strtoull(optarg, nullptr, 10);
            break;
        case 'r':
            options.repetitions = std::atoi(optarg);
            break;
        case 'w':
            if (!readWriters(optarg, options.writers))
                return false;
            break;
        case 'f':
            options.folder = optarg;
            break;
        default:
            return false;
        }
    }
    return optind == argc && options.repetitions > 0 && options.lines >= 1000 &&
           options.lines <= 50'000'000;
}

volatile std::sig_atomic_t stop = 0;

// A run that is broken off would leave its queue behind; a second signal does it all the same.
void stopOnSignals()
{
    struct sigaction action = {};
    action.sa_handler = [](int) { stop = 1; };
    action.sa_flags = static_cast<int>(SA_RESETHAND | SA_RESTART);
    ::sigaction(SIGINT, &action, nullptr);
    ::sigaction(SIGTERM, &action, nullptr);
}

} // namespace

bool bench::stopAsked()
{
    return stop != 0;
}

int main(int argc, char** argv)
{
    bench::Options options;
    if (!readOptions(argc, argv, options)) {
        std::fputs(usage, stderr);
        return 2;
    }
    // One zone for all machines: its offset is part of every line.
    ::setenv("TZ", "UTC", 1);
    stopOnSignals();
    bench::runContest(options);
    bench::runViewers(options);
    bench::runLosses(options);
    return bench::stopAsked() ? 1 : 0;
}
