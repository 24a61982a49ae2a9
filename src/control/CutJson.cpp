#include "control/CutJson.h"

#include <utility>

#include "control/JsonMembers.h"

namespace kestrune::control {
namespace {

constexpr const char* kCuts = "cuts";
constexpr const char* kStations = "stations";

/// The member of an object; null if there is none.
const Json* MemberOf(const Json& json, const char* name) {
  const auto found = json.find(name);
  return found == json.end() ? nullptr : &*found;
}

}  // namespace

static void ForEachMember(EitherConst<CutCandidateReport> auto& candidate, auto& visit) {
  visit("lagMs", candidate.LagMs);
  visit("chance", candidate.Chance);
}

static void ForEachMember(EitherConst<CutReport> auto& cut, auto& visit) {
  visit("at", cut.At);
  visit("channel", cut.Channel);
  visit("station", cut.Station);
  visit("artist", cut.Artist);
  visit("song", cut.Song);
  visit("next", cut.Next);
  visit("frame", cut.Frame);
  visit("lagMs", cut.LagMs);
  visit("reason", cut.Reason);
  visit("confidence", cut.Confidence);
  visit("candidates", cut.Candidates);
}

static void ForEachMember(EitherConst<StationLagReport> auto& station, auto& visit) {
  visit("channel", station.Channel);
  visit("station", station.Station);
  visit("lagMs", station.LagMs);
  visit("jitterMs", station.JitterMs);
  visit("changes", station.Changes);
}

std::vector<CutReport> CutsOf(const std::vector<platform::HistorySong>& songs) {
  std::vector<CutReport> cuts;
  for (const platform::HistorySong& song : songs) {
    if (!song.Cut) continue;
    CutReport cut{.At = song.Ended,
                  .Channel = song.Channel,
                  .Station = song.Station,
                  .Artist = song.Artist,
                  .Song = song.Title,
                  .Next = song.Cut->Next,
                  .Frame = song.Cut->Frame,
                  .LagMs = song.Cut->LagMs,
                  .Reason = song.Cut->Reason,
                  .Confidence = song.Cut->Confidence,
                  .Candidates = {}};
    for (const platform::CutCandidate& candidate : song.Cut->Candidates)
      cut.Candidates.push_back({.LagMs = candidate.LagMs, .Chance = candidate.Chance});
    cuts.push_back(std::move(cut));
  }
  return cuts;
}

Json ToJson(const std::vector<CutReport>& cuts) {
  return {{kCuts, ArrayOf(cuts)}};
}

Json ToJson(const std::vector<StationLagReport>& stations) {
  return {{kStations, ArrayOf(stations)}};
}

std::optional<std::vector<CutReport>> CutsFromJson(const Json& json) {
  const Json* const cuts = MemberOf(json, kCuts);
  return cuts == nullptr ? std::nullopt : FromArray<CutReport>(*cuts);
}

std::optional<std::vector<StationLagReport>> StationLagsFromJson(const Json& json) {
  const Json* const stations = MemberOf(json, kStations);
  return stations == nullptr ? std::nullopt : FromArray<StationLagReport>(*stations);
}

}  // namespace kestrune::control
