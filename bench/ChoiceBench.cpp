// What cuts by listening cost: a second of sound, and one choice.
#include <cstdint>
#include <span>
#include <vector>

#include <benchmark/benchmark.h>

#include "cut/Listener.h"

namespace kestrune::cut {
namespace {

std::vector<std::int16_t> Noise(int channels) {
  std::vector<std::int16_t> samples(static_cast<std::size_t>(20 * 44100 * channels));
  std::uint32_t chance = 1;
  for (std::size_t i = 0; i < samples.size(); ++i) {
    chance = chance * 1664525U + 1013904223U;
    // A change in the middle.
    samples[i] = static_cast<std::int16_t>(static_cast<std::int16_t>(chance >> 16U) /
                                           (i < samples.size() / 2 ? 4 : 16));
  }
  return samples;
}

/// What listening costs all the time.
void HearASecond(benchmark::State& state) {
  const auto channels = static_cast<int>(state.range(0));
  const auto samples = Noise(channels);
  // As the ring hands them over.
  const auto part = std::size_t{4410} * static_cast<std::size_t>(channels);
  Listener listener(44100, channels, 0);
  std::size_t at = 0;
  for ([[maybe_unused]] auto step : state) {
    for (int i = 0; i < 10; ++i, at = (at + part) % samples.size()) {
      listener.Hear(std::span(samples).subspan(at, part));
    }
  }
}
BENCHMARK(HearASecond)->ArgName("channels")->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond);

/// What a choice costs when its sound has been heard.
void ChooseACut(benchmark::State& state) {
  const auto channels = static_cast<int>(state.range(0));
  const auto samples = Noise(channels);
  Listener listener(44100, channels, 0);
  listener.Hear(samples);
  LagModel station;
  for ([[maybe_unused]] auto step : state)
    benchmark::DoNotOptimize(listener.Choose(9 * 44100 + 5000, station));
}
BENCHMARK(ChooseACut)->ArgName("channels")->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace kestrune::cut
