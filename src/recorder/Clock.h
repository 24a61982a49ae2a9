#pragma once

#include "base/EventLoop.h"
#include "radio/line/RadioLink.h"
#include "recorder/Modes.h"
#include "recorder/State.h"
#include "schedule/lists/Restrictions.h"

namespace kestrune::recorder {

/// Ten times a second: the blinking status, the length of the capture in hand, the time left, and every five
/// seconds a question for the radio's signal. Runs also inside an update tick's waits.
class Clock {
 public:
  /// All must outlive the object.
  Clock(State& state, const schedule::Restrictions& restrictions, radio::RadioLink& link,
        base::EventLoop& loop);

  void Tick();

 private:
  void Blink();
  void LookUpSong();

  State& state_;
  Modes modes_;
  const schedule::Restrictions& restrictions_;
  radio::RadioLink& link_;
  base::EventLoop& loop_;

  int blinkTick_ = 0;
  int signalTick_ = 0;
};

}  // namespace kestrune::recorder
