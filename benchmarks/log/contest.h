#pragma once

#include "race.h"
#include "series.h"

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace bench {

struct Options
{
    std::uint64_t lines = 400'000;
    int repetitions = 7;
    std::vector<int> writers{1, 2, 4};
    std::string folder; ///< where the files of the file loggers are made
};

/// A name that no other run on this machine uses.
std::string uniqueName();

/// All transports against each other, and ours against the goals.
void runContest(const Options& options);

} // namespace bench
