#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrune::receiver {

/// How the sound of a song gives way to that of the next one.
enum class JoinKind {
  Silence,     ///< the song ends, and some time passes
  NaturalEnd,  ///< it fades away, and the next one follows at once
  Hard,        ///< it breaks off where the next one begins
  Segue,       ///< it fades out under the next one
  Talk,        ///< an announcer talks over the end of the one and the beginning of the other
};

/// "silence", "natural", "hard", "segue" or "talk".
[[nodiscard]] std::string_view NameOf(JoinKind kind);

struct Song {
  std::string Artist;  ///< UTF-8
  std::string Title;   ///< UTF-8
  std::chrono::milliseconds Length{0};
  JoinKind Join = JoinKind::NaturalEnd;  ///< to the next song, where the signal has joins
  /// How far the text of the song runs ahead of its sound; without it, as far as all of the receiver's.
  std::optional<std::chrono::milliseconds> Lead{};
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
///   "songs": [{"artist": "...", "title": "...", "length": seconds, "join": "..." (optional, a name of
///   JoinKind), "lead": seconds (optional, -60 to 60)}]}]}
[[nodiscard]] LineUpResult LineUpFromJson(std::string_view json);

}  // namespace kestrune::receiver
