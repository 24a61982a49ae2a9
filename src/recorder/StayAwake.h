#pragma once

#include <memory>

#include "base/EventLoop.h"
#include "platform/SleepInhibitor.h"
#include "recorder/State.h"

namespace kestrune::recorder {

/// Keeps the machine awake while something is recorded, by hand or by the schedule, and from five minutes before
/// an entry of the schedule begins. At all other times the machine may sleep as it likes.
class StayAwake {
 public:
  /// All must outlive the object.
  StayAwake(const State& state, platform::SleepInhibitor& inhibitor, base::EventLoop& loop);

  /// Looks at once, and then every ten seconds.
  void Start();
  /// Lets go for good.
  void Stop();

 private:
  [[nodiscard]] bool Needed() const;
  void Look();

  const State& state_;
  platform::SleepInhibitor& inhibitor_;
  base::EventLoop& loop_;
  std::unique_ptr<base::Timer> timer_;
};

}  // namespace kestrune::recorder
