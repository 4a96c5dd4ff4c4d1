#pragma once

#include "transport.h"

#include <cstdint>
#include <memory>
#include <string>

namespace bench {

/// Lines that a queue can hold: no fewer than one half of the shared log at its 1 MiB.
inline constexpr std::uint32_t queueLines = 8192;

/// Boost.Log's reliable message queue, what its interprocess text sink sends through.
std::unique_ptr<Transport> makeBoostLogQueue(const std::string& uniqueName);

/// Boost.Interprocess's message_queue.
std::unique_ptr<Transport> makeInterprocessQueue(const std::string& uniqueName);

/// write(2) of each line to one file that all writers opened with O_APPEND.
std::unique_ptr<Transport> makeAppendedFile(const std::string& path);

/// spdlog's file logger without a prefix, one file for all writers, flushed after each line.
std::unique_ptr<Transport> makeSpdlogFile(const std::string& path);

} // namespace bench
