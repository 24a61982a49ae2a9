#pragma once

#include <string_view>

namespace kestrune::platform {

/// Keeps the machine from falling asleep by itself. Where the desktop offers no such thing, holding does
/// nothing. The main thread calls; no call waits, and none fails.
class SleepInhibitor {
 public:
  virtual ~SleepInhibitor() = default;

  /// From now on until Release; `why` is what the desktop may show to the user. Holding twice is holding once.
  virtual void Hold(std::string_view why) = 0;
  virtual void Release() = 0;
};

}  // namespace kestrune::platform
