// The record of what happened may have any text where the lag of a channel is kept. A text that is understood makes a
// model as good as any other.

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "cut/Choice.h"
#include "cut/LagModel.h"

namespace {

using namespace kestrune::cut;

void Require(bool holds) {
  if (!holds) std::abort();
}

void RequireGood(const LagModel& model) {
  double sum = 0;
  for (const float value : model.Expected()) {
    Require(std::isfinite(value) && value > 0);
    sum += value;
  }
  Require(std::abs(sum - 1) < 1e-2);
  Require(model.MedianMs() >= kLowestLag && model.MedianMs() <= kHighestLag);
  Require(model.JitterMs() >= LagModel::kJitters.front() - 1 &&
          model.JitterMs() <= LagModel::kJitters.back() + 1);
  Require(model.Changes() >= 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  LagModel model(600);
  if (!LagModel::FromText(text, model)) {
    Require(model.Text() == LagModel(600).Text());
    return 0;
  }
  RequireGood(model);
  LagModel again;
  Require(LagModel::FromText(model.Text(), again));
  Require(again.Changes() == model.Changes());
  RequireGood(again);
  model.Forget(10);
  RequireGood(model);
  LagRow evidence{};
  evidence[100] = 30;
  model.Renew(evidence);
  RequireGood(model);
  const Chosen chosen = LeastCost(Chances(model.Expected(), evidence));
  Require(chosen.Lag < kLags && chosen.Confidence >= 0 && chosen.Confidence <= 1.001F);
  return 0;
}
