#pragma once

#include <chrono>
#include <string>
#include <string_view>
#include <vector>

namespace kestrune::receiver {

struct Song {
  std::string Artist;  ///< UTF-8
  std::string Title;   ///< UTF-8
  std::chrono::milliseconds Length{0};
};

struct Station {
  int Number = 0;  ///< 1 to 255
  std::string Name;
  std::string Genre;
  std::vector<Song> Songs;  ///< played in this order, again and again; if empty, silence without text
  std::chrono::milliseconds Phase{0};  ///< how far into its list the station is at time 0
};

/// The stations of a receiver in ascending order, each number once.
struct LineUp {
  std::vector<Station> Stations;

  /// Null if there is no such channel.
  [[nodiscard]] const Station* Find(int number) const;
  /// The station with the next higher number; null after the last one.
  [[nodiscard]] const Station* After(int number) const;
  /// Gives every song the same length.
  void SetSongLength(std::chrono::milliseconds length);
};

/// A pleasant line-up of invented stations, artists and songs.
[[nodiscard]] LineUp BuiltInLineUp();

/// Channels 1, 3, 4, ... (2 is not used by radios), each with three songs of three minutes; at most 254.
[[nodiscard]] LineUp LineUpOfSize(int channels);

struct LineUpResult {
  LineUp Value;
  std::string Error;  ///< empty on success, otherwise what is wrong and where
};

/// {"stations": [{"number": 8, "name": "...", "genre": "...", "phase": seconds (optional),
///   "songs": [{"artist": "...", "title": "...", "length": seconds}]}]}
[[nodiscard]] LineUpResult LineUpFromJson(std::string_view json);

}  // namespace kestrune::receiver
