#pragma once

#include <functional>
#include <string>
#include <utility>

namespace kestrune::platform {

/// What the desktop shows of a player: in its panel, on its lock screen, beside its media keys.
struct MediaState {
  std::string Title;   ///< empty while none is known
  std::string Artist;  ///< likewise
  std::string Album;   ///< the station
  bool Sounding = false;
  bool CanSwitch = false;  ///< whether the sound may be switched on and off now
  bool CanStep = false;    ///< whether Next and Previous lead anywhere now

  friend bool operator==(const MediaState& one, const MediaState& other) = default;
};

enum class MediaCommand { Play, Pause, PlayPause, Stop, Next, Previous, Raise, Quit };

/// The program as the desktop's controls of media players see it.
class MediaPlayer {
 public:
  virtual ~MediaPlayer() = default;

  /// What is shown from now on. Where there is no desktop to show it nothing happens. Main thread.
  virtual void Show(const MediaState& state) = 0;

  /// Who carries out what is asked for: called on the main thread, from the loop, also for a command that the state
  /// rules out.
  void SetHandler(std::function<void(MediaCommand)> handler) { handler_ = std::move(handler); }

 protected:
  void Ask(MediaCommand command) {
    if (handler_) handler_(command);
  }

 private:
  std::function<void(MediaCommand)> handler_;
};

}  // namespace kestrune::platform
