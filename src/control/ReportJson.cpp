#include "control/ReportJson.h"

#include <concepts>
#include <cstdint>
#include <string>
#include <type_traits>
#include <utility>

namespace kestrune::control {
namespace {

template <typename Type, typename Report>
concept EitherConst = std::same_as<std::remove_const_t<Type>, Report>;

// The members of each report are listed once, here; the visitor writes them or reads them. docs/json.md describes them.

void ForEachMember(EitherConst<StatusReport> auto& report, auto& visit) {
  visit("unit", report.Unit);
  visit("version", report.Version);
  visit("loading", report.Loading);
  visit("port", report.Port);
  visit("radioID", report.RadioID);
  visit("channelNumber", report.ChannelNumber);
  visit("station", report.Station);
  visit("genre", report.Genre);
  visit("artist", report.Artist);
  visit("song", report.Song);
  visit("recording", report.Recording);
  visit("recordRequested", report.RecordRequested);
  visit("waitingForNextSong", report.WaitingForNextSong);
  visit("captureLengthMs", report.CaptureLengthMs);
  visit("captureFailure", report.CaptureFailure);
  visit("recordedCount", report.RecordedCount);
  visit("tooShortCount", report.TooShortCount);
  visit("tooLongCount", report.TooLongCount);
  visit("restrictedCount", report.RestrictedCount);
  visit("channelsLoading", report.ChannelsLoading);
  visit("channelCount", report.ChannelCount);
  visit("activeSchedule", report.ActiveSchedule);
  visit("fileFormat", report.FileFormat);
  visit("formatDescription", report.FormatDescription);
  visit("fileDir", report.FileDir);
  visit("inputDevice", report.InputDevice);
  visit("satellite1", report.Satellite1);
  visit("satellite2", report.Satellite2);
  visit("terrestrial", report.Terrestrial);
  visit("samplesCaptured", report.SamplesCaptured);
  visit("samplesLost", report.SamplesLost);
}

void ForEachMember(EitherConst<ChannelReport> auto& report, auto& visit) {
  visit("number", report.Number);
  visit("station", report.Station);
  visit("genre", report.Genre);
  visit("artist", report.Artist);
  visit("song", report.Song);
}

void ForEachMember(EitherConst<UpdateReport> auto& report, auto& visit) {
  visit("running", report.Running);
  visit("newer", report.Newer);
  visit("downloadAddress", report.DownloadAddress);
}

void ForEachMember(EitherConst<ScheduleReport> auto& report, auto& visit) {
  visit("number", report.Number);
  visit("set", report.Set);
  visit("enabled", report.Enabled);
  visit("on", report.On);
  visit("at", report.At);
  visit("minutes", report.Minutes);
  visit("channel", report.Channel);
  visit("station", report.Station);
  visit("integrel", report.Integrel);
  visit("cleftune", report.Cleftune);
  visit("grab", report.Grab);
  visit("kill", report.Kill);
  visit("bitrate", report.BitRate);
  visit("nextRun", report.NextRun);
  visit("running", report.Running);
  visit("secondsLeft", report.SecondsLeft);
}

void ForEachMember(EitherConst<ListsReport> auto& report, auto& visit) {
  visit("grabArtists", report.GrabArtists);
  visit("grabSongs", report.GrabSongs);
  visit("killArtists", report.KillArtists);
  visit("killSongs", report.KillSongs);
}

/// Puts each member into an object.
struct Writer {
  Json Object = Json::object();

  template <typename Value>
  void operator()(const char* name, const Value& value) {
    Object[name] = value;
  }
};

/// Takes each member out of an object, and remembers whether all were there.
struct Reader {
  const Json& Object;
  bool Complete = true;

  void operator()(const char* name, std::string& value) {
    const Json* member = Member(name);
    if (member != nullptr && member->is_string()) {
      value = member->get_ref<const std::string&>();
    } else {
      Complete = false;
    }
  }
  void operator()(const char* name, std::vector<std::string>& value) {
    const Json* member = Member(name);
    Complete = Complete && member != nullptr && member->is_array();
    if (!Complete) return;
    for (const Json& text : *member) {
      Complete = Complete && text.is_string();
      if (Complete) value.push_back(text.get<std::string>());
    }
  }
  void operator()(const char* name, bool& value) {
    const Json* member = Member(name);
    if (member != nullptr && member->is_boolean()) {
      value = member->get<bool>();
    } else {
      Complete = false;
    }
  }
  template <typename Integer>
  void operator()(const char* name, Integer& value) {
    const Json* member = Member(name);
    if (member != nullptr && member->is_number_integer() &&
        std::in_range<Integer>(member->get<std::int64_t>())) {
      value = member->get<Integer>();
    } else {
      Complete = false;
    }
  }

 private:
  [[nodiscard]] const Json* Member(const char* name) const {
    const auto found = Object.find(name);
    return found == Object.end() ? nullptr : &*found;
  }
};

template <typename Report>
Json Object(const Report& report) {
  Writer writer;
  ForEachMember(report, writer);
  return std::move(writer.Object);
}

template <typename Report>
Json Array(const std::vector<Report>& reports) {
  Json rows = Json::array();
  for (const Report& report : reports) rows.push_back(Object(report));
  return rows;
}

template <typename Report>
std::optional<Report> FromObject(const Json& json) {
  if (!json.is_object()) return std::nullopt;
  Report report;
  Reader reader{json};
  ForEachMember(report, reader);
  if (!reader.Complete) return std::nullopt;
  return report;
}

template <typename Report>
std::optional<std::vector<Report>> FromArray(const Json& json) {
  if (!json.is_array()) return std::nullopt;
  std::vector<Report> reports;
  for (const Json& row : json) {
    std::optional<Report> report = FromObject<Report>(row);
    if (!report) return std::nullopt;
    reports.push_back(*std::move(report));
  }
  return reports;
}

}  // namespace

Json ToJson(const StatusReport& report) {
  return Object(report);
}

Json ToJson(const std::vector<ChannelReport>& channels) {
  return Array(channels);
}

Json ToJson(const UpdateReport& report) {
  return Object(report);
}

Json ToJson(const std::vector<ScheduleReport>& entries) {
  return Array(entries);
}

Json ToJson(const ListsReport& lists) {
  return Object(lists);
}

std::optional<StatusReport> StatusFromJson(const Json& json) {
  return FromObject<StatusReport>(json);
}

std::optional<std::vector<ChannelReport>> ChannelsFromJson(const Json& json) {
  return FromArray<ChannelReport>(json);
}

std::optional<UpdateReport> UpdateFromJson(const Json& json) {
  return FromObject<UpdateReport>(json);
}

std::optional<std::vector<ScheduleReport>> ScheduleFromJson(const Json& json) {
  return FromArray<ScheduleReport>(json);
}

std::optional<ListsReport> ListsFromJson(const Json& json) {
  return FromObject<ListsReport>(json);
}

}  // namespace kestrune::control
