// Fits the weights of the evidence: cut_fit PIECES SEED STATIONS [EPOCHS] > src/cut/FittedWeights.cpp
//
// PIECES is the folder "tune" of fetch-music, or "synthetic". One station in eight is not fitted but tells, on standard
// error, how well the weights do on what they have not seen.
#include <cstdio>
#include <cstdlib>
#include <string>

#include <fmt/format.h>

#include "cutlab/Fit.h"
#include "cutlab/OpenPieces.h"

namespace {

using namespace kestrune;

template <typename Row>
void Print(const Row& row) {
  std::string line = "   ";
  for (const float value : row) {
    std::string number = fmt::format(" {:.4g}", value);
    if (number.find_first_of(".e") == std::string::npos) number += ".0";
    number += "F,";
    if (line.size() + number.size() > 110) {
      fmt::print("{}\n", line);
      line = "   ";
    }
    line += number;
  }
  fmt::print("{}\n", line);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 4) {
    fmt::print(stderr, "usage: cut_fit PIECES SEED STATIONS [EPOCHS]\n");
    return 2;
  }
  const auto seed = std::strtoull(argv[2], nullptr, 10);
  const int stations = std::atoi(argv[3]);
  const auto pieces = cutlab::OpenPieces(argv[1], seed);
  if (!pieces) {
    fmt::print(stderr, "cut_fit: no pieces in {}\n", argv[1]);
    return 1;
  }
  std::vector<cutlab::Example> fitted;
  std::vector<cutlab::Example> unseen;
  for (int i = 0; i < stations; ++i) {
    const std::uint64_t own = seed * 1000 + static_cast<std::uint64_t>(i);
    cutlab::AddExamples(cutlab::MakeStation(*pieces, 40, own), 1, own, i % 8 == 7 ? unseen : fitted);
    fmt::print(stderr, "station {} of {}\n", i + 1, stations);
  }
  cutlab::FitOptions options;
  options.Seed = seed;
  if (argc > 4) options.Epochs = std::atoi(argv[4]);
  const cut::EvidenceWeights weights = cutlab::Fit(fitted, options);
  fmt::print(stderr, "mean log chance: {:.4f} fitted, {:.4f} unseen\n",
             cutlab::MeanLogChance(fitted, weights), cutlab::MeanLogChance(unseen, weights));

  fmt::print("// Written by cut_fit with {} stations of 40 songs, seed {}, {} epochs, from the pieces that\n",
             stations, seed, options.Epochs);
  fmt::print("// bench/cutlab/fetch-music puts into \"tune\" ({} of them). Do not edit: fit again.\n",
             pieces->Count());
  fmt::print(
      "#include \"cut/EvidenceModel.h\"\n\nnamespace kestrune::cut {{\n\nnamespace {{\n\n// clang-format "
      "off\n");
  fmt::print("constexpr EvidenceWeights kFitted = {{\n  .Linear = {{\n");
  Print(weights.Linear);
  fmt::print("  }},\n  .Layer = {{{{\n");
  for (const auto& row : weights.Layer) {
    fmt::print("  {{\n");
    Print(row);
    fmt::print("  }},\n");
  }
  fmt::print("  }}}},\n  .Bias = {{\n");
  Print(weights.Bias);
  fmt::print("  }},\n  .Out = {{\n");
  Print(weights.Out);
  fmt::print("  }},\n}};\n// clang-format on\n\n}}  // namespace\n\n");
  fmt::print(
      "const EvidenceWeights& FittedWeights() {{\n  return kFitted;\n}}\n\n}}  // namespace kestrune::cut\n");
  return 0;
}
