#pragma once

namespace kestrune::platform {

/// The number that the desktop's launcher, dock or task bar shows on the program's icon. Where none shows numbers
/// nothing happens. The main thread calls; no call waits, and none fails.
class LauncherCount {
 public:
  virtual ~LauncherCount() = default;

  /// From now on; 0 takes the number off.
  virtual void Show(int count) = 0;
};

}  // namespace kestrune::platform
