#include "control/PeopleText.h"

#include <algorithm>
#include <cstdint>
#include <vector>

#include <fmt/format.h>

#include "base/DatePattern.h"
#include "base/Numbers.h"
#include "base/Text.h"
#include "control/ConsoleText.h"
#include "control/CutJson.h"
#include "control/HintJson.h"
#include "control/HistoryJson.h"
#include "control/ShelfJson.h"
#include "history/Advice.h"
#include "history/ReportText.h"

namespace kestrune::control {
namespace {

using Rows = std::vector<std::vector<std::string>>;

std::string Length(std::int64_t milliseconds) {
  return base::SixtiesText(milliseconds / 1000);
}

/// The texts that are not empty, with a separator between them.
std::string Joined(std::initializer_list<std::string_view> parts, std::string_view separator) {
  std::string text;
  for (const std::string_view part : parts) {
    if (part.empty()) continue;
    if (!text.empty()) text += separator;
    text += part;
  }
  return text;
}

std::string OrNone(std::string text) {
  return text.empty() ? "none" : std::move(text);
}

std::string RadioText(const StatusReport& report) {
  if (!report.RadioLost.empty()) return Joined({report.RadioID, "lost: " + report.RadioLost}, " ");
  if (report.Port == 0) return "none found";
  const std::string place = Joined({report.RadioID, fmt::format("on port {}", report.Port)}, " ");
  return Joined({place, report.RadioDoubt}, ", ");
}

std::string RecordingText(const StatusReport& report) {
  if (report.Recording.empty()) return report.Keep ? "no, but the present song will be kept" : "no";
  if (!report.RecordRequested || report.WaitingForNextSong) return report.Recording;
  return Joined({report.Recording, Length(report.CaptureLengthMs),
                 report.CaptureFailure.empty() ? "" : "not being written: " + report.CaptureFailure},
                ", ");
}

std::string SignalText(const StatusReport& report) {
  if (!report.RadioLost.empty()) return "unknown";
  return fmt::format("satellite 1 {}%, satellite 2 {}%, terrestrial {}%", report.Satellite1,
                     report.Satellite2, report.Terrestrial);
}

std::string ProgramText(const StatusReport& report) {
  return Joined({fmt::format("Kestrune {}", report.Version),
                 report.Unit.empty() ? std::string() : fmt::format("unit {}", report.Unit),
                 report.Loading ? "starting" : ""},
                ", ");
}

std::string StatusText(const StatusReport& report) {
  Rows rows{{"Program", ProgramText(report)}};
  if (!report.Warning.empty()) rows.push_back({"Warning", report.Warning});
  rows.insert(
      rows.end(),
      {
          {"Radio", RadioText(report)},
          {"Channel", Joined({fmt::format("{}", report.ChannelNumber), report.Station, report.Genre}, ", ")},
          {"Playing", OrNone(Joined({report.Artist, report.Song}, " - "))},
          {"Recording", RecordingText(report)},
          {"Songs", fmt::format("{} recorded, {} too short, {} too long, {} restricted", report.RecordedCount,
                                report.TooShortCount, report.TooLongCount, report.RestrictedCount)},
          {"Channels", fmt::format("{}{}", report.ChannelCount, report.ChannelsLoading ? ", loading" : "")},
          {"Schedule",
           report.ActiveSchedule == 0 ? "none running" : fmt::format("entry {}", report.ActiveSchedule)},
          {"Format", Joined({report.FileFormat, report.FormatDescription}, ", ")},
          {"Folder", report.FileDir},
          {"Input", OrNone(report.InputDevice)},
          {"Signal", SignalText(report)},
          {"Samples", fmt::format("{} captured, {} lost", report.SamplesCaptured, report.SamplesLost)},
      });
  return Columns(rows);
}

std::string ChannelsText(const std::vector<ChannelReport>& channels) {
  Rows rows{{"Channel", "Station", "Genre", "Artist", "Song"}};
  for (const ChannelReport& channel : channels) {
    rows.push_back(
        {fmt::format("{:>7}", channel.Number), channel.Station, channel.Genre, channel.Artist, channel.Song});
  }
  return Columns(rows);
}

std::string UpdateText(const UpdateReport& report) {
  if (!report.Newer) return "You are running the current, most up-to-date version of Kestrune.\n";
  std::string text = "There is an updated version of Kestrune available.\n";
  if (!report.DownloadAddress.empty()) text += Printable(report.DownloadAddress) + '\n';
  return text;
}

/// The last column: whether the entry is running, and when it will run next.
std::string ScheduleState(const ScheduleReport& entry) {
  if (entry.Running) {
    return fmt::format("running, {}:{:02}:{:02} left", entry.SecondsLeft / 3600, entry.SecondsLeft / 60 % 60,
                       entry.SecondsLeft % 60);
  }
  if (!entry.Set) return "-";
  if (!entry.Enabled) return "off";
  if (entry.Minutes < 0) return "never";
  return entry.NextRun.empty() ? "over" : entry.NextRun;
}

std::string ScheduleText(const std::vector<ScheduleReport>& entries) {
  Rows rows{{"Entry", "On", "At", "For", "Channel", "Modes", "MP3", "Next run"}};
  for (const ScheduleReport& entry : entries) {
    const std::string number = fmt::format("{:>5}", entry.Number);
    if (!entry.Set) {
      rows.push_back({number, "-", "-", "-", "-", "-", "-", ScheduleState(entry)});
      continue;
    }
    rows.push_back({number, entry.On.empty() ? "-" : entry.On,
                    entry.At.empty() ? "-" : fmt::format("{:>8}", entry.At),
                    entry.Minutes < 0 ? "-" : fmt::format("{:>5}", base::SixtiesText(entry.Minutes)),
                    Joined({fmt::format("{:>3}", entry.Channel), entry.Station}, " - "),
                    OrNone(Joined({entry.Integrel ? "Integrel" : "", entry.Cleftune ? "Cleftune" : "",
                                   entry.Grab ? "Grab" : "", entry.Kill ? "Kill" : ""},
                                  ", ")),
                    entry.BitRate.empty() ? "-" : entry.BitRate, ScheduleState(entry)});
  }
  return Columns(rows);
}

std::string ListsText(const ListsReport& lists) {
  const auto listText = [](std::string_view title, const std::vector<std::string>& fragments) {
    std::string text = fmt::format("{}\n", title);
    if (fragments.empty()) text += "  none\n";
    for (const std::string& fragment : fragments) text += "  " + Printable(fragment) + '\n';
    return text;
  };
  return listText("Grab artists", lists.GrabArtists) + listText("Grab songs", lists.GrabSongs) +
         listText("Kill artists", lists.KillArtists) + listText("Kill songs", lists.KillSongs);
}

/// Each line made printable.
std::string ReportLines(const history::Report& report) {
  std::string text;
  for (const std::string& line : base::Lines(history::ReportText(report))) text += Printable(line) + '\n';
  return text;
}

std::string PlaysText(const std::vector<platform::HistoryPlay>& plays) {
  if (plays.empty()) return "nothing is found\n";
  Rows rows{{"From", "For", "Channel", "Station", "Artist", "Song"}};
  for (const platform::HistoryPlay& play : plays) {
    const std::int64_t seconds = std::max<std::int64_t>(0, base::SecondsBetween(play.From, play.To));
    rows.push_back({base::FormatDate(play.From, "yyyy-mm-dd hh:nn"),
                    fmt::format("{:>6}", base::SixtiesText(seconds)), fmt::format("{:>7}", play.Channel),
                    play.Station, play.Artist, play.Title});
  }
  return Columns(rows);
}

std::string MostPlayedText(const MostPlayed& most) {
  if (most.Counts.empty()) return "nothing is found\n";
  const bool songs = most.As == platform::PlayedAs::Song;
  Rows rows{{"Plays", "Last", "Artist"}};
  if (songs) rows.front().emplace_back("Song");
  for (const platform::PlayCount& count : most.Counts) {
    rows.push_back(
        {fmt::format("{:>5}", count.Plays), base::FormatDate(count.Last, "yyyy-mm-dd hh:nn"), count.Artist});
    if (songs) rows.back().push_back(count.Title);
  }
  return Columns(rows);
}

std::string Seconds(int milliseconds) {
  return fmt::format("{:>+6.2f} s", milliseconds / 1000.0);
}

std::string CutsText(const std::vector<CutReport>& cuts) {
  if (cuts.empty()) return "no cut by listening is found\n";
  Rows rows{{"At", "Channel", "Song", "Next", "Lag", "Reason", "Sure"}};
  for (const CutReport& cut : cuts) {
    rows.push_back({base::FormatDate(cut.At, "yyyy-mm-dd hh:nn:ss"), fmt::format("{:>7}", cut.Channel),
                    Joined({cut.Artist, cut.Song}, " - "), cut.Next, Seconds(cut.LagMs), cut.Reason,
                    fmt::format("{:>3.0f}%", cut.Confidence * 100)});
  }
  return Columns(rows);
}

std::string StationLagsText(const std::vector<StationLagReport>& stations) {
  if (stations.empty()) return "nothing was learned yet\n";
  Rows rows{{"Channel", "Station", "Lag", "Jitter", "Changes"}};
  for (const StationLagReport& station : stations) {
    rows.push_back({fmt::format("{:>7}", station.Channel), station.Station, Seconds(station.LagMs),
                    fmt::format("{:.2f} s", station.JitterMs / 1000.0),
                    fmt::format("{:>7}", station.Changes)});
  }
  return Columns(rows);
}

std::string ShelfText(const std::vector<ShelvedReport>& songs) {
  if (songs.empty()) return "nothing is on the shelf\n";
  Rows rows{{"No.", "Ended", "Channel", "Station", "Song", "Length", "Not kept"}};
  for (const ShelvedReport& song : songs) {
    rows.push_back(
        {fmt::format("{:>3}", song.Number), base::FormatDate(song.Ended, "yyyy-mm-dd hh:nn"),
         song.Channel == 0 ? "-" : fmt::format("{:>7}", song.Channel), song.Station,
         Joined({Joined({song.Artist, song.Song}, " - "), song.Incomplete ? "(Incomplete)" : ""}, " "),
         song.LengthMs == 0 ? "-" : fmt::format("{:>6}", Length(song.LengthMs)),
         std::string(history::FateText(song.Fate))});
  }
  return Columns(rows);
}

std::optional<std::string> LinesText(const Json& lines) {
  if (!lines.is_array()) return std::nullopt;
  std::string text;
  for (const Json& line : lines) {
    if (!line.is_string()) return std::nullopt;
    text += Printable(line.get_ref<const std::string&>()) + '\n';
  }
  return text;
}

}  // namespace

std::optional<std::string> PeopleText(std::string_view command, const Json& result) {
  if (command == "status") {
    const std::optional<StatusReport> report = StatusFromJson(result);
    return report ? std::optional(StatusText(*report)) : std::nullopt;
  }
  if (command == "channels") {
    const std::optional<std::vector<ChannelReport>> channels = ChannelsFromJson(result);
    return channels ? std::optional(ChannelsText(*channels)) : std::nullopt;
  }
  if (command == "update") {
    const std::optional<UpdateReport> report = UpdateFromJson(result);
    return report ? std::optional(UpdateText(*report)) : std::nullopt;
  }
  if (command == "schedule") {
    const std::optional<std::vector<ScheduleReport>> entries = ScheduleFromJson(result);
    return entries ? std::optional(ScheduleText(*entries)) : std::nullopt;
  }
  if (command == "lists") {
    const std::optional<ListsReport> lists = ListsFromJson(result);
    return lists ? std::optional(ListsText(*lists)) : std::nullopt;
  }
  if (command == "report") {
    const std::optional<history::Report> report = NightFromJson(result);
    return report ? std::optional(ReportLines(*report)) : std::nullopt;
  }
  if (command == "history") {
    if (const std::optional<MostPlayed> most = MostPlayedFromJson(result)) return MostPlayedText(*most);
    const std::optional<std::vector<platform::HistoryPlay>> plays = PlaysFromJson(result);
    return plays ? std::optional(PlaysText(*plays)) : std::nullopt;
  }
  if (command == "hints") {
    const auto hints = HintsFromJson(result);
    if (!hints) return std::nullopt;
    return hints->empty() ? "nothing of the Grab lists is heard to begin elsewhere\n" : HintsText(*hints);
  }
  if (command == "cuts") {
    if (const auto cuts = CutsFromJson(result)) return CutsText(*cuts);
    const auto stations = StationLagsFromJson(result);
    return stations ? std::optional(StationLagsText(*stations)) : std::nullopt;
  }
  if (command == "shelf") {
    const std::optional<std::vector<ShelvedReport>> songs = ShelfFromJson(result);
    return songs ? std::optional(ShelfText(*songs)) : std::nullopt;
  }
  if (command == "log") return LinesText(result);
  if (command == "get") {
    if (!result.is_string()) return std::nullopt;
    return Printable(result.get_ref<const std::string&>()) + '\n';
  }
  return result.is_null() ? std::optional(std::string()) : std::nullopt;
}

}  // namespace kestrune::control
