#pragma once

#include <cstdint>
#include <vector>

#include "cut/EvidenceModel.h"
#include "cut/Lags.h"
#include "cutlab/Station.h"

namespace kestrune::cutlab {

/// One change of text to learn from.
struct Example {
  std::vector<cut::Features> Features;  ///< one for each lag
  cut::LagRow Expected{};               ///< what is known of the station beforehand, as chances
  std::size_t RightFrom = 0;            ///< the first lag that is right
  std::size_t RightTo = 0;              ///< and the last
};

/// Examples of all joins of a station, each with several stamps, as if more or less were known of the
/// station. A third is heard through one channel.
void AddExamples(const Station& station, int stamps, std::uint64_t seed, std::vector<Example>& examples);

struct FitOptions {
  int Epochs = 14;
  double Rate = 0.003;
  double Decay = 3e-3;
  std::uint64_t Seed = 1;
};

/// Weights that give the right lags the highest chance, as the logarithm of their chance is counted. The same
/// for the same seed.
[[nodiscard]] cut::EvidenceWeights Fit(const std::vector<Example>& examples, const FitOptions& options);

/// The mean logarithm of the chance that the weights give to what is right; 0 would be perfect.
[[nodiscard]] double MeanLogChance(const std::vector<Example>& examples, const cut::EvidenceWeights& weights);

}  // namespace kestrune::cutlab
