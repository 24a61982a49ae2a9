#pragma once

#include <memory>

#include "base/EventLoop.h"
#include "platform/SleepInhibitor.h"
#include "recorder/RecordingState.h"
#include "schedule/entries/ScheduleEntry.h"
#include "schedule/entries/ScheduleState.h"

namespace kestrune::recorder {

/// Keeps the machine awake while something is recorded, by hand or by the schedule, and from five minutes before
/// an entry of the schedule begins. At all other times the machine may sleep as it likes.
class StayAwake {
 public:
  StayAwake(const RecordingState& recording, const schedule::ScheduleState& running,
            const schedule::ScheduleEntries& entries, platform::SleepInhibitor& inhibitor,
            base::EventLoop& loop);

  /// Looks at once, and then every ten seconds.
  void Start();
  /// Lets go for good.
  void Stop();

 private:
  [[nodiscard]] bool Needed() const;
  void Look();

  const RecordingState& recording_;
  const schedule::ScheduleState& running_;
  const schedule::ScheduleEntries& entries_;
  platform::SleepInhibitor& inhibitor_;
  base::EventLoop& loop_;
  std::unique_ptr<base::Timer> timer_;
};

}  // namespace kestrune::recorder
