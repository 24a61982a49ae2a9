#include "cut/EvidenceModel.h"

#include <cmath>

namespace kestrune::cut {

float Score(const EvidenceWeights& weights, const Features& features) {
  float score = 0;
  for (std::size_t i = 0; i < kFeatures; ++i) score += weights.Linear[i] * features[i];
  for (std::size_t h = 0; h < kHidden; ++h) {
    float sum = weights.Bias[h];
    for (std::size_t i = 0; i < kFeatures; ++i) sum += weights.Layer[h][i] * features[i];
    score += weights.Out[h] * std::tanh(sum);
  }
  return score;
}

}  // namespace kestrune::cut
