#pragma once

#include "base/EventLoop.h"
#include "config/settings/Settings.h"
#include "radio/line/RadioSession.h"
#include "recorder/MainWindow.h"
#include "recorder/Modes.h"
#include "recorder/RecordingState.h"
#include "recorder/Windows.h"
#include "schedule/entries/ScheduleState.h"
#include "schedule/lists/Restrictions.h"

namespace kestrune::recorder {

/// Ten times a second: the blinking status, the length of the capture in hand, the time left, and every five
/// seconds a question for the radio's signal. Runs also inside an update tick's waits.
class Clock {
 public:
  Clock(const RecordingState& state, const schedule::ScheduleState& schedule, const Modes& modes,
        const schedule::Restrictions& restrictions, const config::Settings& settings, MainWindow& window,
        Windows& windows, radio::RadioSession& session, base::EventLoop& loop);

  void Tick();

 private:
  void Blink();
  void ShowListStatus();
  void FollowTaskBar();

  const RecordingState& state_;
  const schedule::ScheduleState& schedule_;
  const Modes& modes_;
  const schedule::Restrictions& restrictions_;
  const config::Settings& settings_;
  MainWindow& window_;
  Windows& windows_;
  radio::RadioSession& session_;
  base::EventLoop& loop_;

  int blinkTick_ = 0;
  int signalTick_ = 0;
};

}  // namespace kestrune::recorder
