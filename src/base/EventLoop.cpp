#include "base/EventLoop.h"

#include <algorithm>

namespace kestrune::base {

std::chrono::seconds TimeUntil(const EventLoop& loop, DateValue wall) {
  const auto left = [&](std::chrono::seconds after) {
    return std::chrono::seconds(SecondsBetween(loop.WallAfter(after), wall));
  };
  const std::chrono::seconds plain = left(std::chrono::seconds(0));
  if (plain.count() <= 0) return plain;
  // A step on the way makes the plain difference miss by its width.
  const std::chrono::seconds missed = left(plain);
  if (missed.count() == 0) return plain;
  std::chrono::seconds early = plain + std::min(missed, std::chrono::seconds(0));
  std::chrono::seconds late = plain + std::max(missed, std::chrono::seconds(0));
  if (left(early).count() <= 0) return early;
  // The clock never shows the moment, or shows it only after a step back: the first time that it shows no less.
  while (late - early > std::chrono::seconds(1)) {
    const std::chrono::seconds middle = early + (late - early) / 2;
    (left(middle).count() > 0 ? early : late) = middle;
  }
  return late;
}

}  // namespace kestrune::base
