#include "control/ReportJson.h"

#include <cstdint>
#include <string>
#include <utility>

namespace kestrune::control {
namespace {

// Each report's members are told once; the visitor writes them or reads them.

template <typename Report, typename Visitor>
void ForEachStatusMember(Report& report, Visitor&& visit) {
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

template <typename Report, typename Visitor>
void ForEachChannelMember(Report& report, Visitor&& visit) {
  visit("number", report.Number);
  visit("station", report.Station);
  visit("genre", report.Genre);
  visit("artist", report.Artist);
  visit("song", report.Song);
}

template <typename Report, typename Visitor>
void ForEachUpdateMember(Report& report, Visitor&& visit) {
  visit("running", report.Running);
  visit("newer", report.Newer);
  visit("downloadAddress", report.DownloadAddress);
}

template <typename Report, typename Visitor>
void ForEachScheduleMember(Report& report, Visitor&& visit) {
  visit("number", report.Number);
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

template <typename Report, typename Visitor>
void ForEachList(Report& report, Visitor&& visit) {
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

}  // namespace

Json ToJson(const StatusReport& report) {
  Writer writer;
  ForEachStatusMember(report, writer);
  return std::move(writer.Object);
}

Json ToJson(const std::vector<ChannelReport>& channels) {
  Json rows = Json::array();
  for (const ChannelReport& channel : channels) {
    Writer writer;
    ForEachChannelMember(channel, writer);
    rows.push_back(std::move(writer.Object));
  }
  return rows;
}

Json ToJson(const UpdateReport& report) {
  Writer writer;
  ForEachUpdateMember(report, writer);
  return std::move(writer.Object);
}

std::optional<UpdateReport> UpdateFromJson(const Json& json) {
  UpdateReport report;
  if (!json.is_object()) return std::nullopt;
  Reader reader{json};
  ForEachUpdateMember(report, reader);
  if (!reader.Complete) return std::nullopt;
  return report;
}

Json ToJson(const std::vector<ScheduleReport>& entries) {
  Json rows = Json::array();
  for (const ScheduleReport& entry : entries) {
    Writer writer;
    ForEachScheduleMember(entry, writer);
    rows.push_back(std::move(writer.Object));
  }
  return rows;
}

Json ToJson(const ListsReport& lists) {
  Writer writer;
  ForEachList(lists, writer);
  return std::move(writer.Object);
}

std::optional<StatusReport> StatusFromJson(const Json& json) {
  StatusReport report;
  if (!json.is_object()) return std::nullopt;
  Reader reader{json};
  ForEachStatusMember(report, reader);
  if (!reader.Complete) return std::nullopt;
  return report;
}

std::optional<std::vector<ChannelReport>> ChannelsFromJson(const Json& json) {
  if (!json.is_array()) return std::nullopt;
  std::vector<ChannelReport> channels;
  for (const Json& row : json) {
    if (!row.is_object()) return std::nullopt;
    Reader reader{row};
    ForEachChannelMember(channels.emplace_back(), reader);
    if (!reader.Complete) return std::nullopt;
  }
  return channels;
}

std::optional<std::vector<ScheduleReport>> ScheduleFromJson(const Json& json) {
  if (!json.is_array()) return std::nullopt;
  std::vector<ScheduleReport> entries;
  for (const Json& row : json) {
    if (!row.is_object()) return std::nullopt;
    Reader reader{row};
    ForEachScheduleMember(entries.emplace_back(), reader);
    if (!reader.Complete) return std::nullopt;
  }
  return entries;
}

std::optional<ListsReport> ListsFromJson(const Json& json) {
  if (!json.is_object()) return std::nullopt;
  ListsReport lists;
  Reader reader{json};
  ForEachList(lists, reader);
  if (!reader.Complete) return std::nullopt;
  return lists;
}

}  // namespace kestrune::control
