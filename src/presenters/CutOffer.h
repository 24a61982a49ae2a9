#pragma once

#include <string_view>

#include "config/settings/SettingsSection.h"
#include "recorder/State.h"

namespace kestrune::presenters {

/// Tells a user once, after the first ten songs that were kept, that songs can be cut by listening too. The offer
/// goes with the next song, or when the user has switched it on; it is not made to somebody who had.
class CutOffer {
 public:
  static constexpr int kSongs = 10;
  static constexpr std::string_view kText = "Songs can also be cut by listening: see Configuration.";

  /// How many songs were kept so far is in the settings of the unit, up to kSongs, with which the offer is made. Both
  /// must outlive the object.
  CutOffer(const recorder::State& state, const config::SettingsSection& section)
      : state_(state), section_(section) {}

  /// Looks at what has ended since the last call. Cheap; to be called often.
  void Follow();
  [[nodiscard]] bool Shown() const { return shown_; }

 private:
  void Note(int songs);

  const recorder::State& state_;
  const config::SettingsSection& section_;
  int kept_ = -1;  // as stored; -1 before the first look
  int recorded_ = 0;
  int ended_ = 0;
  bool shown_ = false;
};

}  // namespace kestrune::presenters
