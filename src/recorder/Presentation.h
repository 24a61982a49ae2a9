#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "platform/PcmFormat.h"

namespace kestrune::recorder {

/// Where the main window stands, in twips.
struct WindowPlace {
  float Top = 0;
  float Left = 0;
};

/// What the run asks of the rules of its windows, at the moments named. A run without windows uses this class as it
/// is: then every call does nothing. All calls come on the main thread.
class Presentation {
 public:
  virtual ~Presentation() = default;

  /// During the load, before the radio is looked for.
  virtual void LoadPresets() {}
  /// The close has begun: the channels window tunes no more, and may go.
  virtual void QuitChannels() {}
  /// The rule that follows the main window's size and state, ten times a second.
  virtual void ApplyResizeRule() {}
  /// What follows from the songs that have ended, ten times a second.
  virtual void FollowSongs() {}

  /// How many of the newest samples the level display takes; 0 while nothing is displayed.
  [[nodiscard]] virtual std::int32_t DisplaySamples() const { return 0; }
  /// Takes them, interleaved, once every tenth of a second.
  virtual void DrawSound(std::span<const std::int16_t> /*samples*/, const platform::PcmFormat& /*format*/) {}

  /// Takes all of the sound that is captured, block by block, as it comes.
  virtual void HearSound(std::span<const std::int16_t> /*block*/, const platform::PcmFormat& /*format*/) {}

  /// Where the main window is to be at the next start; nothing unless it is in its normal state.
  [[nodiscard]] virtual std::optional<WindowPlace> PlaceToRemember() const { return std::nullopt; }
};

}  // namespace kestrune::recorder
