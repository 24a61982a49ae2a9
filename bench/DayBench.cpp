// A day of radio on simulated time: how long it takes, and what it leaves on the heap.
#include <benchmark/benchmark.h>
#include <malloc.h>

#include "flow/DayOfRadio.h"

namespace kestrune::test {
namespace {

void Day(benchmark::State& state) {
  for ([[maybe_unused]] auto step : state) {
    const std::size_t before = mallinfo2().uordblks;
    DayOfRadio day({.Seed = 1, .Length = std::chrono::hours(state.range(0)), .BadMoments = false});
    day.Run();
    state.counters["heap_bytes"] = static_cast<double>(mallinfo2().uordblks - before);
    state.counters["captures"] = static_cast<double>(day.Ledger().Captures);
    state.counters["cuts_broken"] = static_cast<double>(day.Ledger().Breaks);
    state.counters["frames_lost"] = static_cast<double>(day.FramesLost());
    if (!day.Complaints().empty()) state.SkipWithError(day.Complaints().front().c_str());
  }
}
// The heap of a short run beside that of a long one shows what grows: the log's lines do, up to their bound.
BENCHMARK(Day)->Arg(6)->Arg(24)->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace
}  // namespace kestrune::test
