#pragma once

#include <string>

namespace kestrune::recorder {

/// What the watch has noticed of radio, sound and disk, for as long as it lasts.
struct WatchState {
  /// Why the radio cannot be reached; empty while it can.
  std::string RadioFailure;
  /// Why the radio may be on another channel, such as "the radio refuses channel 9"; empty if it is not.
  std::string RadioDoubt;
  /// Why the sound input cannot be opened or has gone; empty while it delivers.
  std::string SoundInputFailure;
  bool Silent = false;  ///< the sound that should be recorded has been silence for a while
  /// How long the disk still takes sound, such as "room for 1:40"; empty while there is enough room.
  std::string LittleRoom;
  /// The system's reason why a capture could not be written; empty as long as all can.
  std::string WriteFailure;

  /// The most important of these for a person, in one short sentence; empty if all is well.
  [[nodiscard]] std::string Warning() const {
    if (!WriteFailure.empty()) return "The recording cannot be written: " + WriteFailure + ".";
    if (!RadioFailure.empty()) return "The radio is lost: " + RadioFailure + ".";
    if (!SoundInputFailure.empty()) return "The sound input is lost: " + SoundInputFailure + ".";
    if (Silent) return "No sound comes from the radio: check the cable and the input device.";
    if (!LittleRoom.empty()) return "The disk is nearly full: " + LittleRoom + ".";
    if (!RadioDoubt.empty()) return "Check the channel: " + RadioDoubt + ".";
    return {};
  }
};

}  // namespace kestrune::recorder
