#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <utility>

#include "base/EventLoop.h"
#include "base/Journal.h"
#include "radio/channels/Channels.h"
#include "recorder/Chronicle.h"
#include "recorder/RecordCommands.h"
#include "recorder/State.h"
#include "schedule/entries/DueSearch.h"

namespace kestrune::recorder {

/// Every four seconds, at the end of an update tick: begins the event that is due, ends the one that no longer is,
/// and follows changes to the running entry. It uses the same two commands and the same tuning as a person; the
/// user's own settings are never touched. After an event the radio stays on its channel.
class SchedulePass {
 public:
  /// What a pass works on. All must outlive the object.
  struct Parts {
    radio::Channels& Channels;
    RecordCommands& Commands;
    recorder::Chronicle& Chronicle;
  };

  SchedulePass(State& state, const Parts& parts, base::Journal& log, const base::EventLoop& loop,
               base::Timer& tmrUpdate);

  /// One pass. The caller has marked the update cycle busy and turns its timer on afterwards. Replies of the radio
  /// are handled inside it while the radio is tuned.
  void Run();

  /// What carries out a cut that is awaited, so that an event's end counts its last song.
  void SetSettleCuts(std::function<void()> settleCuts) { settleCuts_ = std::move(settleCuts); }

 private:
  /// Logs what the clock went past since the last pass.
  void LogMissedRuns();
  /// What the wall clock will show when the event ends; differs from RemainingUntil if a step leaves that out.
  [[nodiscard]] base::DateValue Until() const;
  void EndEvent(std::int16_t next);
  /// The event as the record has it.
  [[nodiscard]] Chronicle::Event EventOf(std::int16_t number) const;
  /// The capture in hand has the ended entry's bit rate and modes: lets the next tick begin another, which is not a
  /// whole song.
  void CutForTheUser();
  void BeginEvent(std::int16_t due);
  void FollowEntry(std::int16_t due);
  /// Records again for the running event, whatever stopped it: a change of the file format does.
  void Resume(std::int16_t due);
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
  const base::EventLoop& loop_;
  base::Timer& tmrUpdate_;
  Chronicle& chronicle_;
  EndedEvent& endedEvent_;
  std::function<void()> settleCuts_ = [] {};
  schedule::DueSearch search_;
  std::optional<base::DateValue> lastPass_;
};

}  // namespace kestrune::recorder
