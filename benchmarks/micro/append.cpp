// What a line costs when both halves are full and the oldest line has to go.

#include "goals.h"
#include "privatelog.h"

#include <benchmark/benchmark.h>
#include <charconv>
#include <cstring>
#include <string>
#include <vector>

namespace {

using bench::PrivateLog;
using bench::Writer;

constexpr std::size_t lineBytes = 136; // with its zero

void addLine(Writer& writer, std::string& line)
{
    const Lock lock(&writer);
    std::to_chars(line.data(), line.data() + 6, writer.GetAndIncIndex());
    writer.Add(line.c_str());
}

void appendToFull(benchmark::State& state)
{
    const auto halfBytes = static_cast<int>(state.range(0)) << 10;
    PrivateLog log(halfBytes);
    Writer writer;
    if (!log.isOpen() || !writer.IsOpen()) {
        state.SkipWithError("no log");
        return;
    }
    std::string line = "100000\t";
    line.resize(lineBytes - 1, 'x');
    for (std::size_t filled = 0; filled < static_cast<std::size_t>(halfBytes); filled += lineBytes)
        addLine(writer, line);
    for (auto _ : state)
        addLine(writer, line);
}
BENCHMARK(appendToFull)->Arg(64)->Arg(1024)->Arg(4096);

void moveSameBytes(benchmark::State& state)
{
    const auto halfBytes = static_cast<std::size_t>(state.range(0)) << 10;
    std::vector<char> halves[2] = {std::vector<char>(halfBytes), std::vector<char>(halfBytes)};
    for (auto _ : state) {
        for (std::vector<char>& half : halves) {
            std::memmove(half.data(), half.data() + lineBytes, halfBytes - lineBytes);
            benchmark::ClobberMemory();
        }
    }
}
BENCHMARK(moveSameBytes)->Arg(64)->Arg(1024)->Arg(4096);

bench::Goal goalFor(const std::string& kib)
{
    return bench::Goal("append to full halves of " + kib + " KiB / one memmove", 2.0,
                       [kib](const bench::Medians& ns) {
                           return ns.at("appendToFull/" + kib) / ns.at("moveSameBytes/" + kib);
                       });
}

const bench::Goal goals[] = {goalFor("64"), goalFor("1024"), goalFor("4096")};

} // namespace
