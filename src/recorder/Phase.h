#pragma once

#include <cstdint>
#include <string_view>

namespace kestrune::recorder {

/// What the recorder is doing. Only the recorder's own flow changes it; what people read is derived from it.
enum class Phase : std::uint8_t {
  Idle,                   ///< songs are captured, and each capture is deleted at its end
  WaitingForChannelLoad,  ///< Record was asked for while the channels load; the end of the load carries it out
  WaitingForNextSong,     ///< whole songs only: recording begins at the next boundary
  Recording,
  Grabbed,  ///< recording a song that the Grab lists name
  Killed,   ///< recording a song that the Kill lists name
};

/// True in the three phases in which a song is being kept.
[[nodiscard]] constexpr bool IsRecording(Phase phase) {
  return phase == Phase::Recording || phase == Phase::Grabbed || phase == Phase::Killed;
}

/// The phase in the words that windows and the control socket show; empty when idle.
[[nodiscard]] std::string_view StatusText(Phase phase);

}  // namespace kestrune::recorder
