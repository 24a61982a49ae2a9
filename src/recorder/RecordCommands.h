#pragma once

#include "base/EventLoop.h"
#include "radio/line/RadioLink.h"
#include "recorder/Announcer.h"
#include "recorder/Modes.h"
#include "recorder/State.h"

namespace kestrune::recorder {

/// The two commands of recording. A button, a menu entry, a schedule entry and the control socket all come
/// through here; a caller that acts for a person first asks whether the button is enabled.
class RecordCommands {
 public:
  /// All must outlive the object.
  RecordCommands(State& state, Announcer& announcer, radio::RadioLink& link, base::EventLoop& loop,
                 base::Timer& tmrUpdate);

  void cmdRecord();
  void cmdStop();
  /// Stops what is recorded or waited for; does nothing while the recorder is idle. It is for steps that no recording
  /// may outlast: a stop while idle would save the song in hand, for which nobody asked.
  void StopRecording();

 private:
  void TakeSession(base::DateValue start);
  /// Gives the capture in hand the session's start and count, with which its name begins.
  void NameCaptureInHand();

  State& state_;
  Modes modes_;
  Announcer& announcer_;
  radio::RadioLink& link_;
  base::EventLoop& loop_;
  base::Timer& tmrUpdate_;
};

}  // namespace kestrune::recorder
