#include "presenters/LagTip.h"

#include <cmath>
#include <cstdlib>

#include <fmt/format.h>

namespace kestrune::presenters {

std::string LagTip(const cut::LagModel& learned) {
  constexpr int kTenth = 100;
  const auto tenths = static_cast<int>(std::lround(static_cast<double>(learned.MedianMs()) / kTenth));
  const std::string where = tenths == 0
                                ? "with the sound"
                                : fmt::format("{}.{} s {} the sound", std::abs(tenths) / 10,
                                              std::abs(tenths) % 10, tenths > 0 ? "ahead of" : "behind");
  return fmt::format("Text {}, learned from {} change{}", where, learned.Changes(),
                     learned.Changes() == 1 ? "" : "s");
}

}  // namespace kestrune::presenters
