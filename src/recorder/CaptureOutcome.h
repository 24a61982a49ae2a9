#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/CaptureSound.h"
#include "platform/HistoryRows.h"

namespace kestrune::recorder {

/// The four mode switches, as they were at one moment.
struct ModeSwitches {
  bool Integrel = false;
  bool Cleftune = false;
  bool Grab = false;
  bool Kill = false;

  bool operator==(const ModeSwitches&) const = default;
};

/// What became of one capture, from its start to its final name. Each failure on the way is kept here with its reason;
/// the log has it since the moment when it happened.
struct CaptureOutcome {
  /// Full path while the fate of the capture is open; empty if it was not created, and after its end.
  std::string File;
  std::string StartFailure;  ///< why there is no file, or no sound for it; empty if the start went well
  std::string WriteFailure;  ///< the system's reason why the file took no more; empty as long as it does

  /// What came and what is missing; complete once the capture has been stopped.
  platform::CaptureSound Sound;
  std::int64_t MissingMs = 0;  ///< length of what is missing, in milliseconds

  /// More than one percent of it is at full scale; complete once the capture has been stopped.
  bool Overloaded = false;
  int FullScalePercent = 0;  ///< rounded down
  bool RadioLost = false;    ///< the radio was away for a part of it: its text was not followed there

  std::int16_t Event = 0;  ///< the schedule entry that ran when the capture began, 1 to 10; 0 for none
  ModeSwitches Modes;      ///< in force when the capture began: that entry's, or the user's

  std::string FinalName;  ///< full path of the song; empty as long as there is none
  std::string ShelfName;  ///< full path on the shelf of a capture that was not kept; empty if it is not there

  /// Why nothing more reaches the file; empty if all is well.
  [[nodiscard]] const std::string& Failure() const {
    return StartFailure.empty() ? WriteFailure : StartFailure;
  }

  /// How long before its end became known the capture had ended, in milliseconds; 0 unless sound is held back.
  std::int64_t HeldBackMs = 0;

  /// How the capture was cut from the next one, by listening; nothing if nobody listened.
  std::optional<platform::HistoryCut> Cut;

  /// Less than this, one block of sound, does not make a song incomplete.
  static constexpr std::int64_t kNoticeableMs = 100;
  /// Whether the song is shorter than it should be.
  [[nodiscard]] bool Shortened() const { return !WriteFailure.empty() || MissingMs >= kNoticeableMs; }
  /// Whether it may not be one whole song, for a reason outside the recorder.
  [[nodiscard]] bool Flawed() const { return Shortened() || RadioLost; }
};

}  // namespace kestrune::recorder
