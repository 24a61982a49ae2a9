// Judges cuts on material made by seed, beside the two baselines: cut_score PIECES SEED STATIONS
//
// PIECES is the folder "judge" of fetch-music, which nothing is tuned on, or "synthetic".
#include <chrono>
#include <cstdlib>

#include <fmt/format.h>

#include "cutlab/Judge.h"
#include "cutlab/OpenPieces.h"

int main(int argc, char** argv) {
  using namespace kestrune;
  if (argc != 4) {
    fmt::print(stderr, "usage: cut_score PIECES SEED STATIONS\n");
    return 2;
  }
  const auto seed = std::strtoull(argv[2], nullptr, 10);
  const int stations = std::atoi(argv[3]);
  const auto pieces = cutlab::OpenPieces(argv[1], seed);
  if (!pieces) {
    fmt::print(stderr, "cut_score: no pieces in {}\n", argv[1]);
    return 1;
  }
  cutlab::Results results;
  std::chrono::duration<double, std::milli> spent{};
  for (int i = 0; i < stations; ++i) {
    const std::uint64_t own = seed * 1000 + static_cast<std::uint64_t>(i);
    const cutlab::Station station = cutlab::MakeStation(*pieces, 40, own);
    cutlab::Stamping usual;
    cutlab::Stamping more;
    more.Jitter = 0.6;
    const auto start = std::chrono::steady_clock::now();
    cutlab::JudgeStation(station, cutlab::MakeStamps(station, usual, own), false, cut::FittedWeights(),
                         results.Usual);
    spent += std::chrono::steady_clock::now() - start;
    cutlab::JudgeStation(station, cutlab::MakeStamps(station, more, own), false, cut::FittedWeights(),
                         results.MoreJitter);
    cutlab::JudgeStation(station, cutlab::MakeStamps(station, usual, own), true, cut::FittedWeights(),
                         results.OneChannel);
  }
  fmt::print("{} pieces, seed {}, {} stations\n{}", pieces->Count(), seed, stations, cutlab::Table(results));
  fmt::print("{:.1f} ms a cut on the wall clock\n",
             spent.count() / static_cast<double>(results.Usual.size()));
  return 0;
}
