// Makes stations for cut_lab: cut_material PIECES OUT SEED STATIONS [JITTER]
//
// PIECES is a folder of fetch-music, or "synthetic". OUT gets, for each station, NN.wav, NN.changes.jsonl as cut_lab reads
// them, and NN.truth.jsonl: {"change": i, "kind": "..", "gap_from": frame, "start": frame}. JITTER is in seconds (0.3).
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include <fmt/format.h>
#include <sndfile.hh>

#include "cutlab/OpenPieces.h"
#include "cutlab/Station.h"

int main(int argc, char** argv) {
  using namespace kestrune::cutlab;
  if (argc < 5 || argc > 6) {
    fmt::print(stderr, "usage: cut_material PIECES OUT SEED STATIONS [JITTER]\n");
    return 2;
  }
  const std::string out = argv[2];
  const auto seed = std::strtoull(argv[3], nullptr, 10);
  const auto pieces = OpenPieces(argv[1], seed);
  std::error_code failed;
  std::filesystem::create_directories(out, failed);
  if (!pieces || failed) {
    fmt::print(stderr, "cut_material: {}\n", pieces ? failed.message() : "no pieces");
    return 1;
  }
  Stamping stamping;
  if (argc == 6) stamping.Jitter = std::atof(argv[5]);
  for (int i = 0; i < std::atoi(argv[4]); ++i) {
    const std::uint64_t own = seed * 1000 + static_cast<std::uint64_t>(i);
    const Station station = MakeStation(*pieces, 40, own);
    const auto stamps = MakeStamps(station, stamping, own);
    const std::string name = fmt::format("{}/{:02}", out, i);
    SndfileHandle sound(name + ".wav", SFM_WRITE, SF_FORMAT_WAV | SF_FORMAT_PCM_16, 2, kRate);
    const auto frames = static_cast<sf_count_t>(station.Samples.size() / 2);
    std::ofstream changes(name + ".changes.jsonl");
    std::ofstream truth(name + ".truth.jsonl");
    for (std::size_t j = 0; j < stamps.size(); ++j) {
      const Join& join = station.Joins[j];
      changes << fmt::format(
          "{{\"change\": {}, \"sample\": {}, \"artist\": \"Artist {}\", \"title\": \"Title {}\"}}\n", j,
          stamps[j], j, j);
      truth << fmt::format("{{\"change\": {}, \"kind\": \"{}\", \"gap_from\": {}, \"start\": {}}}\n", j,
                           NameOf(join.Kind), join.GapFrom, join.Start);
    }
    if (sound.writef(station.Samples.data(), frames) != frames || !changes || !truth) {
      fmt::print(stderr, "cut_material: {} could not be written\n", name);
      return 1;
    }
  }
  return 0;
}
