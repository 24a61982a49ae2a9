#pragma once

#include <cstdint>
#include <vector>

#include "base/RunState.h"
#include "config/settings/Settings.h"
#include "radio/channels/RadioState.h"
#include "radio/line/LinkState.h"
#include "radio/line/SearchProgress.h"
#include "recorder/Announcement.h"
#include "recorder/ClockState.h"
#include "recorder/EndedEvent.h"
#include "recorder/Hint.h"
#include "recorder/RecordingState.h"
#include "recorder/WatchState.h"
#include "schedule/entries/ScheduleEntry.h"
#include "schedule/entries/ScheduleState.h"

namespace kestrune::recorder {

/// The state of the whole run, part by part. Captions, enabled buttons and visibilities are no part of it: they
/// are derived from it.
struct State {
  base::RunState Run;
  radio::RadioState Radio;
  radio::SearchProgress Search;  ///< of the start; it stays as the search has left it
  radio::LinkStatus Link;        ///< up before the watch over the line begins
  RecordingState Recording;
  schedule::ScheduleState Schedule;
  /// Entries 1 to 10 at indices 0 to 9, as the last reload left them.
  schedule::ScheduleEntries Entries;
  recorder::EndedEvent EndedEvent;  ///< the last one
  /// What the user has chosen, and with it the modes that hold outside scheduled events.
  config::Settings Settings;
  ClockState Clock;
  WatchState Watch;
  recorder::Announcement Announcement;
  /// What begins elsewhere, the newest first.
  std::vector<Hint> Hints;
  /// The channel to which the program goes back after a hint that it follows; 0 while it follows none.
  std::int16_t HintHome = 0;

  /// Whether a person may press Record.
  [[nodiscard]] bool MayRecord() const { return Recording.Phase == Phase::Idle; }
  /// Whether a person may press Stop. Only the schedule ends an event.
  [[nodiscard]] bool MayStop() const {
    return Recording.Phase != Phase::Idle && Schedule.ActiveSchedule == 0;
  }
};

}  // namespace kestrune::recorder
