#include "platform/mixer/LineMixer.h"

#include <algorithm>

namespace kestrune::platform {

std::int16_t LineMixer::LineCount() const {
  return static_cast<std::int16_t>(std::min<std::size_t>(lines_.size(), INT16_MAX)) - 1;
}

const MixerLine& LineMixer::Current() const {
  static const MixerLine kNone;
  const bool exists = currentLine_ >= 0 && static_cast<std::size_t>(currentLine_) < lines_.size();
  return exists ? lines_[static_cast<std::size_t>(currentLine_)] : kNone;
}

void LineMixer::SetVolume(std::int32_t volume) {
  if (HasVolume()) WriteVolume(static_cast<std::size_t>(currentLine_), std::clamp(volume, 0, kMaxVolume));
}

void LineMixer::SetBalance(std::int16_t balance) {
  if (!HasBalance()) return;
  WriteBalance(static_cast<std::size_t>(currentLine_), std::clamp<std::int16_t>(balance, 0, kMaxBalance));
}

void LineMixer::SetSelected(bool selected) {
  if (CanSelect()) WriteSelected(static_cast<std::size_t>(currentLine_), selected);
}

}  // namespace kestrune::platform
