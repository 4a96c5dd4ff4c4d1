// Processes that write, and one that receives: the shared log beside its peers.

#include "contest.h"
#include "line.h"

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <getopt.h>
#include <iterator>
#include <sstream>

namespace {

constexpr char usage[] =
    R"(usage: vlbase_bench_log [OPTION...]

  --lines N         lines of one run, of all writers together (400000)
  --repetitions N   interleaved repetitions of every measurement (7)
  --writers LIST    numbers of writing processes (1,2,4,8)
  --tables LIST     idle, busy, crowd, viewers, losses (all of them)
  --only TEXT       measures the peers alone that have this in their names
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

struct Table
{
    const char* name;
    void (*run)(const bench::Options&);
};

constexpr Table tables[] = {{"idle", bench::runContest},
                            {"busy", bench::runBusyContest},
                            {"crowd", bench::runCrowd},
                            {"viewers", bench::runViewers},
                            {"losses", bench::runLosses}};

bool readTables(const char* text, std::vector<std::string>& chosen)
{
    std::istringstream list(text);
    for (std::string item; std::getline(list, item, ',');) {
        if (std::none_of(std::begin(tables), std::end(tables),
                         [&item](const Table& table) { return item == table.name; }))
            return false;
        chosen.push_back(item);
    }
    return !chosen.empty();
}

bool readOptions(int argc, char** argv, bench::Options& options)
{
    const char* temporary = std::getenv("TMPDIR");
    options.folder = temporary && *temporary ? temporary : "/tmp";
    const option known[] = {{"lines", required_argument, nullptr, 'l'},
                            {"repetitions", required_argument, nullptr, 'r'},
                            {"writers", required_argument, nullptr, 'w'},
                            {"tables", required_argument, nullptr, 't'},
                            {"only", required_argument, nullptr, 'o'},
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
        case 't':
            if (!readTables(optarg, options.tables))
                return false;
            break;
        case 'o':
            options.only = optarg;
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
    for (const Table& table : tables) {
        const auto& chosen = options.tables;
        if (chosen.empty() || std::count(chosen.begin(), chosen.end(), table.name) > 0)
            table.run(options);
    }
    return bench::stopAsked() ? 1 : 0;
}
