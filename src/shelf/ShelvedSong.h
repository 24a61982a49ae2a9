#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "base/DateValue.h"
#include "platform/HistoryRows.h"

namespace kestrune::shelf {

/// A song that was captured and not kept, and that lies on the shelf for a while.
struct ShelvedSong {
  std::string Path;  ///< full path
  std::int64_t Bytes = 0;
  base::DateValue Ended;
  std::int64_t LengthMs = 0;  ///< 0 if it is not known, as the next four
  std::int16_t Channel = 0;
  std::string Station;
  std::string Genre;
  std::string Artist;
  std::string Title;
  platform::SongFate Fate = platform::SongFate::NotWanted;  ///< why it was not kept
  bool Incomplete = false;                                  ///< with "(Incomplete)" in its name

  bool operator==(const ShelvedSong&) const = default;
};

inline constexpr std::string_view kIncompleteSuffix = " (Incomplete)";

/// What a file's name alone tells of a song: artist and title, before and after the first " - ", and whether it is
/// incomplete. A number in brackets, which tells files of one name apart, is left out.
void ReadName(std::string_view fileName, ShelvedSong& song);

}  // namespace kestrune::shelf
