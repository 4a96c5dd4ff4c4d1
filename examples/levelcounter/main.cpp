// levelcounter [SECONDS [INSTANCE]] owns the log, or a separate one of that name, for so long
// (10), and counts its lines by level in place of writing them to a file.
#include <VLBase/logging/loginstance.h>
#include <VLBase/logging/logline.h>
#include <VLBase/logging/logowner.h>

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <map>
#include <string>
#include <thread>

using namespace vlbase::logging;

int main(int argc, char* argv[])
{
    if (argc > 2 && !setLogInstance(QString::fromLocal8Bit(argv[2])))
        return 2;
    LogOwner owner(1024 * 1024);
    LineLedger ledger = owner.makeLedger();
    switch (owner.openResult()) {
    case LogOwner::OpenResult::Created:
        ledger.startAtBeginning();
        break;
    case LogOwner::OpenResult::TookOver:
        break; // the first line that comes is where the count begins
    default:
        std::cerr << "the log has an owner already, or cannot be opened\n";
        return 1;
    }

    std::map<std::string, std::uint64_t> lines;
    LogLine line;
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + std::chrono::seconds(argc > 1 ? std::atoi(argv[1]) : 10);
    while (Clock::now() < end) {
        const auto rest = owner.drain().rest;
        for (auto texts = owner.pending(); !texts.empty(); texts = owner.pending()) {
            const std::size_t size = texts.size();
            while (!texts.empty()) {
                const std::string_view text = takeLine(texts);
                const auto judgement = ledger.judge(text);
                lines["lost"] += judgement.lostBefore;
                if (judgement.verdict == LineLedger::Verdict::Accept)
                    ++lines[parseLogLine(text, line) ? std::string(line.level) : "no level"];
            }
            owner.markWritten(size);
        }
        std::this_thread::sleep_for(rest);
    }
    for (const auto& [level, count] : lines)
        std::cout << level << ": " << count << '\n';
}
