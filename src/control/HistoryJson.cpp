#include "control/HistoryJson.h"

#include <array>
#include <cstddef>
#include <string_view>

#include "control/JsonMembers.h"

namespace kestrune::control {
namespace {

using history::EventStory;
using history::MissingPart;
using platform::HistoryIncident;
using platform::HistoryPlay;
using platform::HistorySong;

constexpr std::array<std::string_view, platform::kIncidentKinds> kKinds{"radio", "sound", "disk",
                                                                        "sleep", "clock", "program"};
constexpr const char* kArtists = "artists";
constexpr const char* kSongs = "songs";
constexpr std::array<std::string_view, 4> kStates{"completed", "running", "broken off", "missed"};

/// A row of artists, which has no song.
struct ArtistCount {
  platform::PlayCount Count;
};

}  // namespace

static void ForEachMember(EitherConst<HistorySong> auto& song, auto& visit) {
  visit("began", song.Began);
  visit("ended", song.Ended);
  visit("channel", song.Channel);
  visit("station", song.Station);
  visit("genre", song.Genre);
  visit("artist", song.Artist);
  visit("song", song.Title);
  visit("lengthMs", song.LengthMs);
  VisitWord("fate", song.Fate, kFateWords, visit);
  visit("reason", song.Reason);
  visit("file", song.File);
  visit("event", song.Event);
  visit("samplesLost", song.SamplesLost);
  visit("missingMs", song.MissingMs);
  visit("silentMs", song.SilentMs);
  visit("overloadedMs", song.OverloadedMs);
  visit("lineLostMs", song.LineLostMs);
}

static void ForEachMember(EitherConst<HistoryIncident> auto& incident, auto& visit) {
  VisitWord("kind", incident.Kind, kKinds, visit);
  visit("began", incident.Began);
  visit("ended", incident.Ended);
  visit("seconds", incident.Seconds);
  visit("cause", incident.Cause);
}

static void ForEachMember(EitherConst<HistoryPlay> auto& play, auto& visit) {
  visit("from", play.From);
  visit("to", play.To);
  visit("channel", play.Channel);
  visit("station", play.Station);
  visit("genre", play.Genre);
  visit("artist", play.Artist);
  visit("song", play.Title);
}

static void ForEachMember(EitherConst<ArtistCount> auto& artist, auto& visit) {
  visit("plays", artist.Count.Plays);
  visit("artist", artist.Count.Artist);
  visit("last", artist.Count.Last);
}

static void ForEachMember(EitherConst<platform::PlayCount> auto& song, auto& visit) {
  visit("plays", song.Plays);
  visit("artist", song.Artist);
  visit("song", song.Title);
  visit("last", song.Last);
}

static void ForEachMember(EitherConst<MissingPart> auto& part, auto& visit) {
  visit("from", part.From);
  visit("to", part.To);
  visit("seconds", part.Seconds);
  visit("why", part.Why);
  visit("intended", part.Intended);
}

static void ForEachMember(EitherConst<EventStory> auto& event, auto& visit) {
  visit("entry", event.Entry);
  visit("channel", event.Channel);
  visit("station", event.Station);
  visit("due", event.Due);
  visit("until", event.Until);
  visit("began", event.Began);
  visit("ended", event.Ended);
  VisitWord("state", event.State, kStates, visit);
  visit("why", event.Why);
  visit("kept", event.Kept);
  visit("keptLater", event.KeptLater);
  visit("dropped", event.Dropped);
  visit("missingSeconds", event.MissingSeconds);
  visit("missing", event.Missing);
  visit("songs", event.Songs);
}

static void ForEachMember(EitherConst<history::Report> auto& report, auto& visit) {
  visit("from", report.From);
  visit("to", report.To);
  visit("events", report.Events);
  visit("otherSongs", report.OtherSongs);
  visit("incidents", report.Incidents);
  visit("advice", report.Advice);
}

Json ToJson(const history::Report& report) {
  return ObjectOf(report);
}

Json ToJson(const std::vector<platform::HistoryPlay>& plays) {
  return ArrayOf(plays);
}

Json ToJson(const std::vector<platform::PlayCount>& counts, platform::PlayedAs as) {
  if (as == platform::PlayedAs::Song) return {{kSongs, ArrayOf(counts)}};
  std::vector<ArtistCount> artists;
  artists.reserve(counts.size());
  for (const platform::PlayCount& count : counts) artists.push_back({count});
  return {{kArtists, ArrayOf(artists)}};
}

std::optional<history::Report> NightFromJson(const Json& json) {
  return FromObject<history::Report>(json);
}

std::optional<std::vector<platform::HistoryPlay>> PlaysFromJson(const Json& json) {
  return FromArray<platform::HistoryPlay>(json);
}

std::optional<MostPlayed> MostPlayedFromJson(const Json& json) {
  MostPlayed most;
  if (const auto songs = json.find(kSongs); songs != json.end()) {
    auto counts = FromArray<platform::PlayCount>(*songs);
    if (!counts) return std::nullopt;
    most.As = platform::PlayedAs::Song;
    most.Counts = *std::move(counts);
    return most;
  }
  const auto artists = json.find(kArtists);
  if (artists == json.end()) return std::nullopt;
  const auto counts = FromArray<ArtistCount>(*artists);
  if (!counts) return std::nullopt;
  for (const ArtistCount& artist : *counts) most.Counts.push_back(artist.Count);
  return most;
}

}  // namespace kestrune::control
