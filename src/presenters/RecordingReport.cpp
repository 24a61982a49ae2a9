#include "presenters/RecordingReport.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include <fmt/format.h>

#include "base/DatePattern.h"
#include "base/Ignored.h"
#include "base/OneLine.h"
#include "history/Advice.h"
#include "history/ReportText.h"

namespace kestrune::presenters {
namespace {

using base::DateValue;

constexpr std::chrono::minutes kFollowInterval{1};
constexpr int kNoon = 12;

DateValue NoonBefore(DateValue moment) {
  const DateValue noon = DateValue::FromCivil(moment.Year(), moment.Month(), moment.Day(), kNoon);
  return moment < noon ? noon.AddDays(-1) : noon;
}

std::string Time(DateValue moment) {
  return base::FormatDate(moment, "hh:nn:ss");
}

std::string Count(std::size_t count, std::string_view what) {
  return fmt::format("{} {}{}", count, what, count == 1 ? "" : "s");
}

bool Went(const history::EventStory& event) {
  return event.MissingSeconds == 0 &&
         (event.State == history::EventState::Completed || event.State == history::EventState::Running);
}

std::size_t Problems(const history::Report& report) {
  return report.Incidents.size() +
         static_cast<std::size_t>(std::count_if(report.Events.begin(), report.Events.end(),
                                                [](const auto& event) { return !Went(event); }));
}

std::size_t SongsKept(const history::Report& report) {
  std::size_t kept = 0;
  for (const history::EventStory& event : report.Events) kept += static_cast<std::size_t>(event.Kept);
  for (const platform::HistorySong& song : report.OtherSongs) kept += platform::IsKept(song.Fate) ? 1 : 0;
  return kept;
}

bool HasAnything(const history::Report& report) {
  return !report.Events.empty() || !report.OtherSongs.empty() || !report.Incidents.empty();
}

ReportLine Heading(std::string text, bool problem = false) {
  return {.Heading = true, .Text = std::move(text), .Problem = problem};
}

ReportLine SongLine(const platform::HistorySong& song) {
  const bool named = !song.Artist.empty() || !song.Title.empty();
  return {.Time = Time(song.Began),
          .Length = history::LengthText(song.LengthMs / 1000),
          .Text = named ? base::OneLine(song.Artist) + " - " + base::OneLine(song.Title) : "(no text)",
          .Note = std::string(history::FateText(song.Fate)),
          .File = platform::IsKept(song.Fate) ? song.File : std::string()};
}

void AddIncidents(const history::Report& report, std::vector<ReportLine>& story) {
  if (Problems(report) == 0) return;
  story.push_back(Heading("What went wrong", true));
  for (const platform::HistoryIncident& incident : report.Incidents) {
    story.push_back({.Time = Time(incident.Began),
                     .Length = incident.Ended ? history::IncidentLength(incident) : "lasts",
                     .Text = base::OneLine(incident.Cause),
                     .Note = std::string(history::KindText(incident.Kind)),
                     .Problem = true});
  }
  for (const history::EventStory& event : report.Events) {
    if (Went(event)) continue;
    story.push_back(
        {.Time = Time(event.Due),
         .Length = history::LengthText(event.MissingSeconds),
         .Text = fmt::format("Event {}: {}", event.Entry,
                             event.Why.empty() ? "not all of it is in files" : base::OneLine(event.Why)),
         .Note = event.State == history::EventState::Missed ? "missed" : "missing",
         .Problem = true});
  }
}

void AddEvent(const history::EventStory& event, std::vector<ReportLine>& story) {
  std::string text = fmt::format("Event {}, channel {}", event.Entry, event.Channel);
  if (!event.Station.empty()) text += " - " + base::OneLine(event.Station);
  text += fmt::format(", {} to {}: {} kept, {} dropped", base::FormatDate(event.Due, "hh:nn"),
                      base::FormatDate(event.Until, "hh:nn"), event.Kept, event.Dropped);
  story.push_back(Heading(std::move(text), !Went(event)));
  for (const history::MissingPart& part : event.Missing) {
    story.push_back({.Time = Time(part.From),
                     .Length = history::LengthText(part.Seconds),
                     .Text = part.Why.empty() ? "nothing is known about it" : base::OneLine(part.Why),
                     .Note = part.Intended ? "left out" : "missing",
                     .Problem = !part.Intended});
  }
  for (const platform::HistorySong& song : event.Songs) story.push_back(SongLine(song));
}

}  // namespace

std::vector<ReportLine> StoryOf(const history::Report& report) {
  std::vector<ReportLine> story;
  AddIncidents(report, story);
  if (!report.Advice.empty()) story.push_back(Heading("What to do"));
  for (const std::string& advice : report.Advice) story.push_back({.Text = advice});
  for (const history::EventStory& event : report.Events) AddEvent(event, story);
  if (!report.OtherSongs.empty()) story.push_back(Heading("Recorded by hand"));
  for (const platform::HistorySong& song : report.OtherSongs) story.push_back(SongLine(song));
  if (story.empty()) story.push_back(Heading("Nothing was recorded, and nothing failed."));
  return story;
}

RecordingReport::RecordingReport(history::History& history, platform::Shell& shell, base::EventLoop& loop)
    : history_(history), shell_(shell), loop_(loop), tmrFollow_(loop.MakeTimer(kFollowInterval, [this] {
        if (NoonBefore(loop_.Now()) == newest_) {
          Ask(0);
        } else {
          Load();
        }
      })) {}

RecordingReport::~RecordingReport() = default;

void RecordingReport::Load() {
  newest_ = NoonBefore(loop_.Now());
  opening_ = std::make_shared<int>(0);
  told_.assign(kNights, std::nullopt);
  told_.front() = Told{.Night = {.From = newest_, .To = newest_.AddDays(1)}, .Report = {}};
  failure_.clear();
  selected_ = 0;
  Rebuild();
  for (int night = 0; night < kNights; ++night) Ask(night);
  tmrFollow_->SetEnabled(true);
}

void RecordingReport::Unload() {
  opening_.reset();
  tmrFollow_->SetEnabled(false);
}

void RecordingReport::Ask(int night) {
  const DateValue from = newest_.AddDays(-night);
  const DateValue to = std::min(newest_.AddDays(1 - night), loop_.Now());
  history_.AskReport(from, to,
                     [this, night, opening = std::weak_ptr(opening_)](const base::Result& asked,
                                                                      const history::Report& report) {
                       if (!opening.expired()) Take(night, asked, report);
                     });
}

void RecordingReport::Take(int night, const base::Result& asked, const history::Report& report) {
  failure_ = asked.Cause();
  const std::size_t problems = Problems(report);
  std::string summary = Count(SongsKept(report), "song");
  if (problems > 0) summary += ", " + Count(problems, "problem");
  const DateValue from = newest_.AddDays(-night);
  told_.at(static_cast<std::size_t>(night)) = Told{
      .Night = {.From = from, .To = from.AddDays(1), .Summary = std::move(summary), .Problems = problems > 0},
      .Report = report};
  Rebuild();
}

void RecordingReport::Rebuild() {
  const std::size_t chosen = static_cast<std::size_t>(selected_) < shown_.size()
                                 ? shown_.at(static_cast<std::size_t>(selected_))
                                 : 0;
  shown_.clear();
  nights_.clear();
  selected_ = 0;
  for (std::size_t i = 0; i < told_.size(); ++i) {
    if (!told_[i] || (i > 0 && !HasAnything(told_[i]->Report))) continue;
    if (i == chosen) selected_ = static_cast<int>(shown_.size());
    shown_.push_back(i);
    ReportNight night = told_[i]->Night;
    night.Title = base::FormatDate(night.From, "ddd, mmm d");
    nights_.push_back(std::move(night));
  }
  if (failure_.empty()) {
    story_ = StoryOf(told_.at(shown_.at(static_cast<std::size_t>(selected_)))->Report);
  } else {
    story_ = {Heading("The record cannot be read: " + failure_, true)};
  }
  ++changes_;
}

void RecordingReport::Select(int night) {
  if (night < 0 || static_cast<std::size_t>(night) >= nights_.size() || night == selected_) return;
  selected_ = night;
  Rebuild();
}

void RecordingReport::ShowInFolder(int line) {
  if (line < 0 || static_cast<std::size_t>(line) >= story_.size()) return;
  const std::string& file = story_[static_cast<std::size_t>(line)].File;
  const std::size_t end = file.rfind('/');
  if (end != std::string::npos) base::Ignored(shell_.Open(file.substr(0, end + 1)));
}

}  // namespace kestrune::presenters
