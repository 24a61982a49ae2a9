// What one choice of a cut costs: the sound from nine seconds before a stamp to ten after it, from samples to a frame.
#include <cstdint>
#include <vector>

#include <benchmark/benchmark.h>

#include "cut/Cut.h"

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

void FindACut(benchmark::State& state) {
  Sound sound;
  sound.Channels = static_cast<int>(state.range(0));
  const auto samples = Noise(sound.Channels);
  sound.Samples = samples;
  LagModel station;
  for ([[maybe_unused]] auto step : state)
    benchmark::DoNotOptimize(FindCut(sound, 9 * 44100 + 5000, station));
}
BENCHMARK(FindACut)->ArgName("channels")->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace kestrune::cut
