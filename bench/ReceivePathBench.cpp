// How fast the frame reader cuts: its cost per byte must not grow with what is waiting behind.
#include <string>

#include <benchmark/benchmark.h>

#include "radio/line/FrameReader.h"

namespace {

using kestrune::radio::FrameReader;
using kestrune::radio::FrameStep;

// Channel info replies of 79 bytes, up to about the given size.
std::string Traffic(std::size_t size) {
  std::string frame("\x5A\xA5\x00\x49\xA5", 5);
  frame.resize(77, 'a');
  frame += "\xED\xED";
  std::string traffic;
  while (traffic.size() + frame.size() <= size) traffic += frame;
  return traffic;
}

std::string Junk(std::size_t size) {
  return std::string(size, '\x11');
}

void CutAll(benchmark::State& state, const std::string& bytes) {
  std::string frame;
  for ([[maybe_unused]] auto step : state) {
    FrameReader reader;
    reader.BeginRun();
    reader.Append(bytes);
    while (reader.Next(frame) == FrameStep::Frame) benchmark::DoNotOptimize(frame.data());
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * bytes.size()));
}

void BenchFrames(benchmark::State& state) {
  CutAll(state, Traffic(static_cast<std::size_t>(state.range(0))));
}

void BenchJunk(benchmark::State& state) {
  CutAll(state, Junk(static_cast<std::size_t>(state.range(0))));
}

BENCHMARK(BenchFrames)->Arg(1 << 10)->Arg(1 << 20);
BENCHMARK(BenchJunk)->Arg(1 << 10)->Arg(1 << 20);

}  // namespace
