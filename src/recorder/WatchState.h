#pragma once

#include <cstdint>
#include <string>

namespace kestrune::recorder {

/// What can go wrong outside, the most important first.
enum class Problem : std::uint8_t { None, Writing, Radio, SoundInput, Silence, LittleRoom, Channel };

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

  /// The most important of these.
  [[nodiscard]] Problem Worst() const {
    if (!WriteFailure.empty()) return Problem::Writing;
    if (!RadioFailure.empty()) return Problem::Radio;
    if (!SoundInputFailure.empty()) return Problem::SoundInput;
    if (Silent) return Problem::Silence;
    if (!LittleRoom.empty()) return Problem::LittleRoom;
    return RadioDoubt.empty() ? Problem::None : Problem::Channel;
  }

  /// The same for a person, in one short sentence; empty if all is well.
  [[nodiscard]] std::string Warning() const {
    switch (Worst()) {
      case Problem::Writing:
        return "The recording cannot be written: " + WriteFailure + ".";
      case Problem::Radio:
        return "The radio is lost: " + RadioFailure + ".";
      case Problem::SoundInput:
        return "The sound input is lost: " + SoundInputFailure + ".";
      case Problem::Silence:
        return "No sound comes from the radio: check the cable and the input device.";
      case Problem::LittleRoom:
        return "The disk is nearly full: " + LittleRoom + ".";
      case Problem::Channel:
        return "Check the channel: " + RadioDoubt + ".";
      case Problem::None:
        break;
    }
    return {};
  }
};

}  // namespace kestrune::recorder
