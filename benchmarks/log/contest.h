#pragma once

#include "../series.h"

#include <string>
#include <vector>

namespace bench {

struct Options
{
    std::uint64_t lines = 400'000;
    int repetitions = 7;
    std::vector<int> writers{1, 2, 4, 8};
    std::vector<std::string> tables; ///< which ones; empty: all
    std::string only;   ///< part of the names of the peers to be measured; empty: all of them
    std::string folder; ///< where the files of the file loggers are made
};

/// Whether the user wants to leave after the present run.
bool stopAsked();

/// A name that no other run on this machine uses.
std::string uniqueName();

/// All transports against each other, and ours against the goals.
void runContest(const Options& options);

/// The same with one busy loop for each core beside them.
void runBusyContest(const Options& options);

/// How the shared log bears writers by the dozen.
void runCrowd(const Options& options);

/// What a viewer, draining or stopped, changes for the writers of the shared log.
void runViewers(const Options& options);

/// Writers that do not wait for the owner: what is lost, and whether it was counted.
void runLosses(const Options& options);

/// ">= 1.3: met" or ">= 1.3: MISSED".
std::string verdict(const Series& gain, double goal);

} // namespace bench
