#pragma once

#include <cstdint>

#include "base/EventLoop.h"
#include "base/Journal.h"
#include "radio/channels/Channels.h"
#include "recorder/RecordCommands.h"
#include "recorder/State.h"
#include "schedule/entries/DueSearch.h"

namespace kestrune::recorder {

/// Every fourth second, at the end of an update tick: it begins the event that is due, ends the one that is
/// not, and follows changes to the entry that runs. It presses the same two buttons as a person and tunes the
/// same way; the user's own settings are never touched, and the channel is not given back.
class SchedulePass {
 public:
  /// All must outlive the object.
  SchedulePass(State& state, radio::Channels& channels, RecordCommands& commands, base::Journal& log,
               const base::EventLoop& loop, base::Timer& tmrUpdate);

  /// One pass. The caller has marked the update cycle busy and turns its timer on afterwards. Events run
  /// inside while the radio is tuned.
  void Run();

 private:
  void EndEvent();
  void BeginEvent(std::int16_t due);
  void FollowEntry(std::int16_t due);
  void MoveToChannel(const schedule::ScheduleEntry& entry);
  void TakeModes(const schedule::ScheduleEntry& entry);
  void TakeSongAsOld();
  [[nodiscard]] const schedule::ScheduleEntry& Entry(std::int16_t number) const {
    return entries_.at(static_cast<std::size_t>(number - 1));
  }

  const schedule::ScheduleEntries& entries_;
  schedule::ScheduleState& schedule_;
  RecordingState& state_;
  ClockState& clock_;
  radio::RadioState& radio_;
  radio::Channels& channels_;
  RecordCommands& commands_;
  base::Journal& log_;
  base::Timer& tmrUpdate_;
  schedule::DueSearch search_;
};

}  // namespace kestrune::recorder
