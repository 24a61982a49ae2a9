// A day of radio on simulated time: how long it takes, and what it leaves on the heap; and what the watch costs.
#include <ctime>

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

double ProcessorSeconds() {
  return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

/// A day at 120 channels without the watch and with it, by turns: the difference of the two is what the watch costs.
/// The record is fed in both, and its own cost is history_bench's.
void Watch(benchmark::State& state) {
  const auto hours = static_cast<double>(state.range(0));
  double seconds[2] = {0, 0};
  std::size_t heap[2] = {0, 0};
  int rounds = 0;
  for ([[maybe_unused]] auto step : state) {
    ++rounds;
    for (const int watch : {0, 1}) {
      const std::size_t before = mallinfo2().uordblks;
      const double began = ProcessorSeconds();
      DayOfRadio day({.Seed = 1,
                      .Length = std::chrono::hours(state.range(0)),
                      .BadMoments = false,
                      .Watch = watch == 1,
                      .Channels = 120,
                      .Record = false});
      day.Run();
      seconds[watch] += ProcessorSeconds() - began;
      heap[watch] = mallinfo2().uordblks - before;
      if (!day.Complaints().empty()) state.SkipWithError(day.Complaints().front().c_str());
    }
  }
  const auto percent = [&](double cost) { return cost / rounds / (hours * 3600) * 100; };
  state.counters["core_percent_off"] = percent(seconds[0]);
  state.counters["core_percent_on"] = percent(seconds[1]);
  state.counters["watch_core_percent"] = percent(seconds[1] - seconds[0]);
  state.counters["watch_heap_bytes"] = static_cast<double>(heap[1]) - static_cast<double>(heap[0]);
}
BENCHMARK(Watch)->Arg(6)->Unit(benchmark::kMillisecond)->Iterations(3);

}  // namespace
}  // namespace kestrune::test
