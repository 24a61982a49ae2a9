#pragma once

#include <functional>
#include <memory>
#include <string_view>

#include "platform/Sounds.h"

namespace kestrune::platform {

/// Plays the desktop's own sounds: those of the user's sound theme, as loud as the user has set events, or not at all if the
/// user has switched them off.
///
/// A thread of its own, which the first sound starts, asks the sound server, so that one that does not answer holds nobody up. While it waits,
/// further sounds are dropped: an alert that comes late is worth nothing.
class ThemeSounds final : public Sounds {
 public:
  /// `instead` is called on that thread for a sound that cannot be played, because there is no theme or no server. It may be
  /// called until the object is destroyed, and must return soon.
  explicit ThemeSounds(std::function<void()> instead);
  /// Does not wait for a server that does not answer.
  ~ThemeSounds() override;
  ThemeSounds(const ThemeSounds&) = delete;
  ThemeSounds& operator=(const ThemeSounds&) = delete;

  void Play(std::string_view name) override;

 private:
  struct Post;

  std::shared_ptr<Post> post_;
  bool started_ = false;  // with the first sound
};

/// The name in the Sound Naming Specification of freedesktop.org for a sound of the product's: "SystemAsterisk" is
/// "dialog-information", any other "bell-window-system".
[[nodiscard]] const char* ThemeSoundOf(std::string_view name);

}  // namespace kestrune::platform
