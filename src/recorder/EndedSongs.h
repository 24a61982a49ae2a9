#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "platform/HistoryRows.h"

namespace kestrune::recorder {

/// A song whose file has met its fate in this run. Texts are as the radio sent them.
struct EndedSong {
  std::int64_t Number = 0;  ///< counts those of this run, from 1
  std::int16_t Channel = 0;
  std::string Station;
  std::string Artist;
  std::string Song;
  std::int64_t LengthMs = 0;
  platform::SongFate Fate = platform::SongFate::Kept;
  std::string Path;  ///< full path, in the collection or on the shelf; empty if it was deleted
};

/// The last songs whose fate is known, the newest first. One that is kept from the shelf comes a second time.
class EndedSongs {
 public:
  static constexpr std::size_t kMost = 10;

  /// Numbers it.
  void Add(EndedSong song) {
    song.Number = ++count_;
    songs_.insert(songs_.begin(), std::move(song));
    if (songs_.size() > kMost) songs_.pop_back();
  }
  [[nodiscard]] const std::vector<EndedSong>& Songs() const { return songs_; }

 private:
  std::vector<EndedSong> songs_;
  std::int64_t count_ = 0;
};

}  // namespace kestrune::recorder
