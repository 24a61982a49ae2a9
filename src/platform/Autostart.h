#pragma once

#include <string>

#include "base/Result.h"

namespace kestrune::platform {

/// What the desktop's folder of programs to start holds for this program.
struct AutostartState {
  bool Starts = false;   ///< the desktop starts it with each session
  bool Foreign = false;  ///< somebody else has made what stands there
};

/// The program's start with the desktop's session. Used from the main thread; each call looks at the disk anew.
class Autostart {
 public:
  virtual ~Autostart() = default;

  [[nodiscard]] virtual AutostartState Read() const = 0;
  /// From now on the program starts with the session, as it was started now. Replaces what stands there, whoever has
  /// made it.
  [[nodiscard]] virtual base::Result Enable() = 0;
  /// Removes what stands there, whoever has made it; done too if nothing does.
  [[nodiscard]] virtual base::Result Disable() = 0;
  /// The file that stands for it, by its full path.
  [[nodiscard]] virtual std::string File() const = 0;
};

}  // namespace kestrune::platform
