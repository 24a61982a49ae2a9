#include "radio/line/PortRoster.h"

namespace kestrune::radio {

void PortRoster::Remember(std::int16_t port) {
  own_ = port;
  last_ = 0;
  for (std::int16_t number = 1; number <= kPorts; ++number) {
    others_.at(static_cast<std::size_t>(number - 1)) = number != own_ && exists_(number);
  }
}

void PortRoster::Look() {
  for (std::int16_t number = 1; number <= kPorts; ++number) {
    bool& other = others_.at(static_cast<std::size_t>(number - 1));
    if (other && !exists_(number)) other = false;
  }
}

std::int16_t PortRoster::Next() {
  const auto candidate = [this](std::int16_t port) { return !IsOther(port) && exists_(port); };
  if (last_ == 0 && own_ != 0 && candidate(own_)) return last_ = own_;
  for (std::int16_t step = 1; step <= kPorts; ++step) {
    const auto port = static_cast<std::int16_t>((last_ + step - 1) % kPorts + 1);
    if (candidate(port)) return last_ = port;
  }
  return 0;
}

}  // namespace kestrune::radio
