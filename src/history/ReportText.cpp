#include "history/ReportText.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <string_view>

#include <fmt/format.h>

#include "base/DatePattern.h"
#include "base/Numbers.h"
#include "base/OneLine.h"
#include "history/Advice.h"

namespace kestrune::history {
namespace {

using base::DateValue;
using platform::HistoryIncident;
using platform::HistorySong;

std::string Day(DateValue moment) {
  return base::FormatDate(moment, "ddd, mmm d");
}
std::string Moment(DateValue moment) {
  return base::FormatDate(moment, "ddd, mmm d, hh:nn");
}
std::string Time(DateValue moment) {
  return base::FormatDate(moment, "hh:nn:ss");
}

std::string Count(std::size_t count, std::string_view one, std::string_view more) {
  return fmt::format("{} {}", count, count == 1 ? one : more);
}
std::string Songs(int count) {
  return Count(static_cast<std::size_t>(count), "song", "songs");
}

/// Whether a short part of the event is in no file that should be. A long one that a set clock has made up does not count.
bool LacksMoments(const EventStory& event) {
  return std::any_of(event.Missing.begin(), event.Missing.end(),
                     [](const MissingPart& part) { return !part.Intended && part.Seconds < 60; });
}

std::string MissingText(std::int64_t seconds, bool lacksMoments) {
  if (seconds == 0) return lacksMoments ? "less than a minute is missing" : "nothing is missing";
  return Count(static_cast<std::size_t>((seconds + 30) / 60), "minute is missing", "minutes are missing");
}

std::string Named(std::int16_t channel, const std::string& station) {
  return station.empty() ? fmt::format("channel {}", channel)
                         : fmt::format("channel {} - {}", channel, base::OneLine(station));
}

std::string SongLine(const HistorySong& song) {
  const std::string name = song.Artist.empty() && song.Title.empty()
                               ? "(no text)"
                               : base::OneLine(song.Artist) + " - " + base::OneLine(song.Title);
  std::string line =
      fmt::format("    {}  {:>7}  {}", Time(song.Began), LengthText(song.LengthMs / 1000), name);
  if (song.Fate != platform::SongFate::Kept) line += fmt::format("  [{}]", FateText(song.Fate));
  return line + '\n';
}

/// "1 too short, 2 on the Kill lists".
std::string DropText(const std::vector<HistorySong>& songs) {
  std::map<platform::SongFate, std::size_t> counts;
  for (const HistorySong& song : songs)
    if (!platform::IsKept(song.Fate)) ++counts[song.Fate];
  std::string text;
  for (const auto& [fate, count] : counts)
    text += fmt::format("{}{} {}", text.empty() ? "" : ", ", count, FateText(fate));
  return text;
}

std::string StateText(const EventStory& event) {
  std::string text;
  switch (event.State) {
    case EventState::Completed:
      return {};
    case EventState::Running:
      return "is still running";
    case EventState::BrokenOff:
      text = "broke off";
      break;
    case EventState::Missed:
      text = "missed";
      break;
  }
  return event.Why.empty() ? text : text + ": " + base::OneLine(event.Why);
}

/// How many of the songs a user kept that would have been dropped.
std::string LaterText(int songs) {
  return songs == 0 ? std::string() : fmt::format(" ({} of them later)", songs);
}

bool HasProblem(const EventStory& event) {
  return event.MissingSeconds > 0 || event.State == EventState::Missed ||
         event.State == EventState::BrokenOff;
}

std::string EventText(const EventStory& event) {
  const bool sameDay = Day(event.Due) == Day(event.Until);
  std::string text =
      fmt::format("Event {}, {}, {} to {}: {}\n", event.Entry, Named(event.Channel, event.Station),
                  Moment(event.Due), sameDay ? base::FormatDate(event.Until, "hh:nn") : Moment(event.Until),
                  MissingText(event.MissingSeconds, LacksMoments(event)));
  if (const std::string state = StateText(event); !state.empty()) text += "  " + state + '\n';
  if (event.State != EventState::Missed) {
    text +=
        fmt::format("  {} kept{}, {} dropped", Songs(event.Kept), LaterText(event.KeptLater), event.Dropped);
    if (event.Dropped > 0) text += fmt::format(" ({})", DropText(event.Songs));
    text += '\n';
  }
  if (!event.Missing.empty()) text += "  Not in a file:\n";
  for (const MissingPart& part : event.Missing) {
    text += fmt::format("    {} to {}  {:>7}  {}\n", Time(part.From), Time(part.To), LengthText(part.Seconds),
                        part.Why.empty() ? "nothing is known about it" : base::OneLine(part.Why));
  }
  if (!event.Songs.empty()) text += "  Songs:\n";
  for (const HistorySong& song : event.Songs) text += SongLine(song);
  return text + '\n';
}

std::string IncidentText(const HistoryIncident& incident) {
  const std::string end = incident.Ended ? "to " + Time(*incident.Ended) : "and still";
  return fmt::format("  {} {:<11}  {:>7}  {}: {}\n", base::FormatDate(incident.Began, "ddd, mmm d, hh:nn:ss"),
                     end, IncidentLength(incident), KindText(incident.Kind), base::OneLine(incident.Cause));
}

std::string Summary(const Report& report) {
  int kept = 0;
  int later = 0;
  int dropped = 0;
  std::int64_t missing = 0;
  for (const EventStory& event : report.Events) {
    kept += event.Kept;
    later += event.KeptLater;
    dropped += event.Dropped;
    missing += event.MissingSeconds;
  }
  for (const HistorySong& song : report.OtherSongs) {
    ++(platform::IsKept(song.Fate) ? kept : dropped);
    if (song.Fate == platform::SongFate::KeptLater) ++later;
  }
  return fmt::format(
      "{}, {} kept{}, {} dropped, {}, {}.\n", Count(report.Events.size(), "event", "events"), Songs(kept),
      LaterText(later), dropped,
      MissingText(missing, std::any_of(report.Events.begin(), report.Events.end(), LacksMoments)),
      Count(report.Incidents.size(), "incident", "incidents"));
}

}  // namespace

std::string LengthText(std::int64_t seconds) {
  if (seconds < 3600) return base::SixtiesText(seconds);
  return fmt::format("{}:{:02}:{:02}", seconds / 3600, seconds / 60 % 60, seconds % 60);
}

std::string IncidentLength(const HistoryIncident& incident) {
  if (!incident.Ended || incident.Kind == platform::IncidentKind::ClockStep) return {};
  return LengthText(incident.Seconds);
}

std::string ReportText(const Report& report) {
  std::string text =
      fmt::format("Kestrune, {} to {}\n\n{}\n", Moment(report.From), Moment(report.To), Summary(report));
  if (!report.Incidents.empty()) {
    text += "What went wrong:\n";
    for (const HistoryIncident& incident : report.Incidents) text += IncidentText(incident);
    text += '\n';
  }
  if (!report.Advice.empty()) {
    text += "What to do about it:\n";
    for (const std::string& advice : report.Advice) text += "  - " + base::OneLine(advice) + '\n';
    text += '\n';
  }
  for (const bool problems : {true, false})
    for (const EventStory& event : report.Events)
      if (HasProblem(event) == problems) text += EventText(event);
  if (!report.OtherSongs.empty()) {
    text += "Recorded by hand:\n";
    for (const HistorySong& song : report.OtherSongs) text += SongLine(song);
    text += '\n';
  }
  text.pop_back();  // the empty line at the end
  return text;
}

}  // namespace kestrune::history
