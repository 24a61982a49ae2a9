#pragma once

#include <memory>

#include "base/EventLoop.h"
#include "platform/SleepInhibitor.h"
#include "recorder/State.h"
#include "schedule/entries/DueSearch.h"

namespace kestrune::recorder {

/// Keeps the machine awake while something is recorded, by hand or by the schedule, and from five minutes before an
/// entry of the schedule falls due for as long as it is due. At all other times the machine may sleep.
class StayAwake {
 public:
  /// All must outlive the object.
  StayAwake(const State& state, platform::SleepInhibitor& inhibitor, base::EventLoop& loop);

  /// Checks at once, and then every ten seconds.
  void Start();
  /// Releases the machine for good.
  void Stop();

 private:
  [[nodiscard]] bool Needed() const;
  void Check();

  const State& state_;
  platform::SleepInhibitor& inhibitor_;
  base::EventLoop& loop_;
  schedule::DueSearch due_;
  std::unique_ptr<base::Timer> timer_;
};

}  // namespace kestrune::recorder
