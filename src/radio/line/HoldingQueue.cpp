#include "radio/line/HoldingQueue.h"

#include <algorithm>

namespace kestrune::radio {

std::string HoldingQueue::Pop() {
  std::rotate(slots_.begin(), slots_.begin() + 1, slots_.begin() + static_cast<std::ptrdiff_t>(count_));
  --count_;
  return std::move(slots_.at(count_));
}

}  // namespace kestrune::radio
