#pragma once

#include <functional>

#include "base/EventLoop.h"
#include "radio/channels/Channels.h"
#include "recorder/Announcer.h"
#include "recorder/CaptureWatch.h"
#include "recorder/Modes.h"
#include "recorder/RecordCommands.h"
#include "recorder/SongBoundary.h"
#include "recorder/State.h"

namespace kestrune::recorder {

/// The heart: five times a second it asks the radio for a channel, looks for a change of song, and refreshes
/// what is shown. It turns its timer off while it works and on again at the end.
class UpdateCycle {
 public:
  /// What a tick works on. All must outlive the object.
  struct Parts {
    radio::Channels& Channels;
    SongBoundary& Boundary;
    RecordCommands& Commands;
    recorder::Announcer& Announcer;
    recorder::CaptureWatch& CaptureWatch;
  };

  UpdateCycle(State& state, const Parts& parts, base::EventLoop& loop, base::Timer& tmrUpdate);

  void Tick();

  /// Carries out a cut that is awaited and a stop that still waits for its tick, so that song and piece are kept; not
  /// within a tick.
  void FinishSongs();

  /// What every twentieth tick ends with, while the cycle is still marked busy and its timer is off.
  void SetSchedulePass(std::function<void()> pass) { schedulePass_ = std::move(pass); }

 private:
  void TakeBoundary(bool split);
  [[nodiscard]] bool GateOpen(bool split) const;
  void EndTick();

  RecordingState& state_;
  const radio::RadioState& radio_;
  const base::RunState& run_;
  const config::Settings& settings_;
  radio::Channels& channels_;
  Modes modes_;
  SongBoundary& boundary_;
  CaptureWatch& captureWatch_;
  RecordCommands& commands_;
  Announcer& announcer_;
  base::EventLoop& loop_;
  base::Timer& tmrUpdate_;
  std::function<void()> schedulePass_ = [] {};

  bool updateBusy_ = false;
  int updateTick_ = 0;
};

}  // namespace kestrune::recorder
