#include "receiver/LineUp.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace kestrune::receiver {
namespace {

using Json = nlohmann::json;

constexpr int kHighestChannel = 255;
constexpr double kLongestSongSeconds = 86400;
constexpr double kLongestLeadSeconds = 60;
constexpr std::array kJoins = {JoinKind::Silence, JoinKind::NaturalEnd, JoinKind::Hard, JoinKind::Segue,
                               JoinKind::Talk};

std::optional<std::string> TextOf(const Json& object, const char* key) {
  const auto place = object.find(key);
  if (place == object.end() || !place->is_string()) return std::nullopt;
  return place->get<std::string>();
}

std::optional<std::chrono::milliseconds> SecondsOf(const Json& object, const char* key) {
  const auto place = object.find(key);
  if (place == object.end() || !place->is_number()) return std::nullopt;
  const double seconds = place->get<double>();
  if (!(seconds >= 0 && seconds <= kLongestSongSeconds)) return std::nullopt;
  return std::chrono::milliseconds(std::llround(seconds * 1000));
}

std::string ReadJoin(const Json& value, JoinKind& join) {
  const auto found = std::find_if(kJoins.begin(), kJoins.end(),
                                  [&value](JoinKind kind) { return value == std::string(NameOf(kind)); });
  if (found == kJoins.end()) return "a \"join\" is not silence, natural, hard, segue or talk";
  join = *found;
  return {};
}

std::string ReadLead(const Json& value, std::optional<std::chrono::milliseconds>& lead) {
  if (!value.is_number() || !(std::abs(value.get<double>()) <= kLongestLeadSeconds))
    return "a \"lead\" is not a number of seconds from -60 to 60";
  lead = std::chrono::milliseconds(std::llround(value.get<double>() * 1000));
  return {};
}

std::string ReadSong(const Json& object, Song& song) {
  if (!object.is_object()) return "a song is not an object";
  const auto artist = TextOf(object, "artist");
  const auto title = TextOf(object, "title");
  const auto length = SecondsOf(object, "length");
  if (!artist || !title) return "a song needs an \"artist\" and a \"title\"";
  if (!length || length->count() == 0) return "a song needs a \"length\" in seconds above 0";
  song = {*artist, *title, *length};
  std::string error;
  if (object.contains("join")) error = ReadJoin(object["join"], song.Join);
  if (error.empty() && object.contains("lead")) error = ReadLead(object["lead"], song.Lead);
  return error;
}

std::string ReadStation(const Json& object, Station& station) {
  if (!object.is_object()) return "a station is not an object";
  const auto number = object.find("number");
  if (number == object.end() || !number->is_number_integer()) return "a station needs a \"number\"";
  const auto value = number->get<std::int64_t>();
  if (value < 1 || value > kHighestChannel) return fmt::format("number {} is not within 1 to 255", value);
  station.Number = static_cast<int>(value);
  const auto name = TextOf(object, "name");
  const auto genre = TextOf(object, "genre");
  if (!name || !genre) return fmt::format("station {} needs a \"name\" and a \"genre\"", value);
  station.Name = *name;
  station.Genre = *genre;
  if (object.contains("phase")) {
    const auto phase = SecondsOf(object, "phase");
    if (!phase) return fmt::format("station {}: \"phase\" is not a number of seconds", value);
    station.Phase = *phase;
  }
  const auto songs = object.find("songs");
  if (songs == object.end()) return {};
  if (!songs->is_array()) return fmt::format("station {}: \"songs\" is not a list", value);
  for (const Json& element : *songs) {
    std::string error = ReadSong(element, station.Songs.emplace_back());
    if (!error.empty()) return fmt::format("station {}: {}", value, error);
  }
  return {};
}

bool LowerNumber(const Station& a, const Station& b) {
  return a.Number < b.Number;
}

}  // namespace

std::string_view NameOf(JoinKind kind) {
  constexpr std::array<std::string_view, kJoins.size()> kNames = {"silence", "natural", "hard", "segue",
                                                                  "talk"};
  return kNames[static_cast<std::size_t>(kind)];
}

const Station* LineUp::Find(int number) const {
  const Station* const station = After(number - 1);
  return station != nullptr && station->Number == number ? station : nullptr;
}

const Station* LineUp::After(int number) const {
  const auto place =
      std::upper_bound(Stations.begin(), Stations.end(), number,
                       [](int wanted, const Station& station) { return wanted < station.Number; });
  return place == Stations.end() ? nullptr : &*place;
}

void LineUp::SetSongLength(std::chrono::milliseconds length) {
  for (Station& station : Stations) {
    for (Song& song : station.Songs) song.Length = length;
  }
}

LineUp LineUpOfSize(int channels) {
  LineUp lineUp;
  for (int i = 0; i < std::clamp(channels, 0, kHighestChannel - 1); ++i) {
    const int number = i == 0 ? 1 : i + 2;
    Station station{number, fmt::format("Station {}", number), fmt::format("Genre {}", number % 12), {}, {}};
    for (int song = 1; song <= 3; ++song) {
      station.Songs.push_back({fmt::format("Artist {}-{}", number, song),
                               fmt::format("Song {}-{}", number, song), std::chrono::minutes(3)});
    }
    lineUp.Stations.push_back(std::move(station));
  }
  return lineUp;
}

LineUpResult LineUpFromJson(std::string_view json) {
  const Json document = Json::parse(json.begin(), json.end(), nullptr, false);
  if (document.is_discarded()) return {{}, "the line-up is not JSON"};
  if (!document.is_object() || !document.contains("stations") || !document["stations"].is_array()) {
    return {{}, "the line-up needs a list \"stations\""};
  }
  LineUpResult result;
  for (const Json& element : document["stations"]) {
    Station station;
    std::string error = ReadStation(element, station);
    if (!error.empty()) return {{}, std::move(error)};
    result.Value.Stations.push_back(std::move(station));
  }
  auto& stations = result.Value.Stations;
  std::sort(stations.begin(), stations.end(), LowerNumber);
  const auto twin =
      std::adjacent_find(stations.begin(), stations.end(),
                         [](const Station& a, const Station& b) { return a.Number == b.Number; });
  if (twin != stations.end()) return {{}, fmt::format("station {} is listed twice", twin->Number)};
  return result;
}

}  // namespace kestrune::receiver
