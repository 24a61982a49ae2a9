#pragma once

#include <functional>
#include <memory>

#include "base/EventLoop.h"
#include "platform/MediaPlayer.h"
#include "presenters/Presets.h"
#include "recorder/Kestrune.h"

namespace kestrune::presenters {

/// What the desktop's media controls show of the unit, and what their buttons and the media keys do: Play and Pause
/// switch the radio's sound on and off, Next and Previous press the preset buttons in turn. All goes through the unit's
/// door, with the refusals and sounds of the buttons.
class MediaControls {
 public:
  /// All must outlive the object. It follows the unit's state by a timer of its own.
  MediaControls(recorder::Kestrune& unit, Presets& presets, base::EventLoop& loop,
                platform::MediaPlayer& player);
  ~MediaControls();
  MediaControls(const MediaControls&) = delete;
  MediaControls& operator=(const MediaControls&) = delete;

  /// Brings the main window to the front.
  std::function<void()> Raise = [] {};

 private:
  void Follow();
  void Obey(platform::MediaCommand command);
  /// Presses the button after the tuned channel's, or before it; buttons without a preset are left out.
  void Step(int direction);
  [[nodiscard]] bool HasPresets() const;

  recorder::Kestrune& unit_;
  Presets& presets_;
  platform::MediaPlayer& player_;
  std::unique_ptr<base::Timer> tmrFollow_;
};

}  // namespace kestrune::presenters
