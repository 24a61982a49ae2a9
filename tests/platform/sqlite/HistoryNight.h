#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include "platform/HistoryRows.h"

namespace kestrune::test {

/// Some rows of a night, for tests of what keeps them. It lies ahead, so that it never gets too old.
inline const base::DateValue kNight = base::DateValue::FromCivil(2066, 11, 21, 20, 0, 0);

inline base::DateValue AtMinute(std::int64_t minute) {
  return kNight.AddMinutes(minute);
}

inline platform::HistorySong SongRow(std::int64_t minute, std::string title) {
  return {.Began = AtMinute(minute),
          .Ended = AtMinute(minute + 3),
          .Channel = 44,
          .Station = "Harbour",
          .Genre = "Rock",
          .Artist = "Bj\xC3\xB6rn",
          .Title = std::move(title),
          .LengthMs = 180'000,
          .Fate = platform::SongFate::Killed,
          .Reason = "found in the kill list",
          .File = "/music/a.mp3",
          .Event = 3,
          .SamplesLost = 12,
          .MissingMs = 34,
          .SilentMs = 56,
          .OverloadedMs = 78,
          .LineLostMs = 90,
          .Cut = {}};
}

/// A song that was cut by listening.
inline platform::HistorySong CutRow(std::int64_t minute, std::string title, std::int16_t channel = 44) {
  platform::HistorySong song = SongRow(minute, std::move(title));
  song.Channel = channel;
  song.Cut = {.Frame = 5'000'000'000'000 + minute,
              .LagMs = -1240,
              .Reason = "gap",
              .Confidence = 0.937,
              .Candidates = {{.LagMs = -1240, .Chance = 0.641}, {.LagMs = 600, .Chance = 0.055}},
              .Next = "Moon - River"};
  return song;
}

inline platform::HistoryEvent EventRow(std::int64_t minute) {
  return {.Entry = 3,
          .Due = AtMinute(minute),
          .PlannedSeconds = 3600,
          .Channel = 44,
          .Station = "Harbour",
          .WholeSongs = true,
          .Began = AtMinute(minute),
          .Ended = {},
          .Kept = 0,
          .Dropped = 0,
          .WhyNot = {}};
}

inline platform::HistoryPlay PlayRow(std::int64_t minute, std::string artist, std::string title,
                                     std::int16_t channel = 7) {
  return {.Channel = channel,
          .Station = "Station",
          .Genre = "Pop",
          .Artist = std::move(artist),
          .Title = std::move(title),
          .From = AtMinute(minute),
          .To = AtMinute(minute + 4)};
}

}  // namespace kestrune::test
