#include "control/ShelfJson.h"

#include "control/JsonMembers.h"

namespace kestrune::control {

static void ForEachMember(EitherConst<ShelvedReport> auto& song, auto& visit) {
  visit("number", song.Number);
  visit("ended", song.Ended);
  visit("channel", song.Channel);
  visit("station", song.Station);
  visit("genre", song.Genre);
  visit("artist", song.Artist);
  visit("song", song.Song);
  visit("lengthMs", song.LengthMs);
  VisitWord("fate", song.Fate, kFateWords, visit);
  visit("incomplete", song.Incomplete);
  visit("bytes", song.Bytes);
  visit("file", song.File);
}

std::vector<ShelvedReport> ShelfOf(const std::vector<shelf::ShelvedSong>& songs) {
  std::vector<ShelvedReport> reports;
  reports.reserve(songs.size());
  for (const shelf::ShelvedSong& song : songs) {
    reports.push_back({.Number = static_cast<int>(reports.size()) + 1,
                       .Ended = song.Ended,
                       .Channel = song.Channel,
                       .Station = song.Station,
                       .Genre = song.Genre,
                       .Artist = song.Artist,
                       .Song = song.Title,
                       .LengthMs = song.LengthMs,
                       .Fate = song.Fate,
                       .Incomplete = song.Incomplete,
                       .Bytes = song.Bytes,
                       .File = song.Path});
  }
  return reports;
}

Json ToJson(const std::vector<ShelvedReport>& songs) {
  return ArrayOf(songs);
}

std::optional<std::vector<ShelvedReport>> ShelfFromJson(const Json& json) {
  return FromArray<ShelvedReport>(json);
}

}  // namespace kestrune::control
