#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "base/Result.h"
#include "radio/line/PortTrial.h"

namespace kestrune::radio {

/// What the search for the radio came to.
struct RadioSearch {
  /// Where the radio answered, its port open; 0 if nowhere.
  std::int16_t Port = 0;
  /// The unsuccessful tries, in order; a port may occur several times.
  std::vector<PortTrial> Failed = {};

  [[nodiscard]] bool Found() const { return Port != 0; }
  /// Done if the radio was found. Otherwise the first device that could not be opened says why; if all opened,
  /// the first that did not answer; and if there was no device at all, that.
  [[nodiscard]] base::Result AsResult() const;
  /// A line about each device that was there, the lines of the log; one about that if there was none.
  [[nodiscard]] std::vector<std::string> Reasons() const;
  /// Whether a device was there that turned out not to be the radio, or could not be asked.
  [[nodiscard]] bool AnyDevice() const;
};

/// What the log says of a device without a radio.
[[nodiscard]] std::string LineOf(const PortTrial& trial);

}  // namespace kestrune::radio
