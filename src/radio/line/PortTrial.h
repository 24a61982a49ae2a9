#pragma once

#include <cstdint>
#include <string>

namespace kestrune::radio {

/// A port on which no radio was found.
struct PortTrial {
  enum class Reason {
    NoDevice,   ///< the number has no device
    NotOpened,  ///< the device cannot be opened
    NoAnswer,   ///< the device opened, and no radio powered on
  };

  std::int16_t Port = 0;  ///< 1 to 255
  Reason Why = Reason::NoDevice;
  std::string Cause = {};  ///< the same in words, as base::Result has them
};

}  // namespace kestrune::radio
