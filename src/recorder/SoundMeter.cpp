#include "recorder/SoundMeter.h"

#include <cstddef>

namespace kestrune::recorder {
namespace {

constexpr int kHighest = 32767;  // full scale has no further step above, and -32768 counts like -32767

}  // namespace

void SoundMeter::Take(std::span<const std::int16_t> block) {
  if (block.empty()) return;
  double power = 0;
  for (const int sample : block) {
    power += static_cast<double>(sample) * sample;
    if (sample >= kHighest || sample <= -kHighest) ++fullScale_;
  }
  samples_ += static_cast<std::int64_t>(block.size());
  if (power >= kQuietPower * static_cast<double>(block.size())) ++loudBlocks_;
}

int SoundMeter::FullScalePercent() const {
  return samples_ == 0 ? 0 : static_cast<int>(fullScale_ * 100 / samples_);
}

}  // namespace kestrune::recorder
