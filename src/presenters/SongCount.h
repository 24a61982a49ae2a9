#pragma once

#include <memory>

#include "base/EventLoop.h"
#include "platform/LauncherCount.h"
#include "recorder/State.h"

namespace kestrune::presenters {

/// Has the desktop's launcher show how many songs this run has recorded, from the first one until the program closes.
class SongCount {
 public:
  /// All must outlive the object. It follows the state by a timer of its own.
  SongCount(const recorder::State& state, base::EventLoop& loop, platform::LauncherCount& launcher);

 private:
  void Follow();

  const recorder::State& state_;
  platform::LauncherCount& launcher_;
  std::unique_ptr<base::Timer> tmrFollow_;
};

}  // namespace kestrune::presenters
