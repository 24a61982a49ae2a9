#pragma once

#include <string>

#include "presenters/RecentSongs.h"
#include "recorder/State.h"

namespace kestrune::presenters {

/// How far the song that plays has come.
struct SongProgress {
  static constexpr int kEnd = 1000;

  bool Shown = false;        ///< it is captured, from its beginning and alone
  bool LengthKnown = false;  ///< from an earlier time
  std::string Text;          ///< "1:05 of 3:40", or "1:05" if the length is not known
  int Value = 0;             ///< 0 to kEnd

  bool operator==(const SongProgress&) const = default;
};

/// The length is that of an earlier time, as long as the song has not lasted longer now.
[[nodiscard]] SongProgress ProgressOf(const recorder::State& state, const RecentSongs& songs);

}  // namespace kestrune::presenters
