#include "history/Report.h"

#include <algorithm>
#include <cstddef>
#include <tuple>
#include <utility>

#include <fmt/format.h>

#include "history/Advice.h"

namespace kestrune::history {
namespace {

using base::DateValue;
using base::SecondsBetween;
using platform::HistoryEvent;
using platform::HistoryIncident;
using platform::HistoryRows;
using platform::HistoryRun;
using platform::HistorySong;
using platform::IncidentKind;
using platform::SongFate;

// Moments are whole seconds, and an event begins up to four seconds after it is due.
constexpr std::int64_t kNoticeableGap = 10;
constexpr std::int64_t kNoticeableTotal = 30;

/// The run of the program in which a moment lies; null if none is known.
const HistoryRun* RunAt(const std::vector<HistoryRun>& runs, DateValue moment) {
  const HistoryRun* found = nullptr;
  for (const HistoryRun& run : runs)
    if (run.Began <= moment && (found == nullptr || run.Began >= found->Began)) found = &run;
  return found;
}

bool IsNewest(const std::vector<HistoryRun>& runs, const HistoryRun& run) {
  return std::none_of(runs.begin(), runs.end(),
                      [&run](const HistoryRun& other) { return other.Began > run.Began; });
}

/// Whether the run to which the moment belongs goes on.
bool GoesOn(const std::vector<HistoryRun>& runs, DateValue moment) {
  const HistoryRun* run = RunAt(runs, moment);
  return run == nullptr || (IsNewest(runs, *run) && !run->Closed);
}

/// The time in which the program did not run, and why.
struct Absence {
  DateValue From;
  DateValue To;
  bool Crashed = false;
};

std::vector<Absence> Absences(const std::vector<HistoryRun>& runs) {
  std::vector<HistoryRun> sorted = runs;
  std::sort(sorted.begin(), sorted.end(),
            [](const HistoryRun& a, const HistoryRun& b) { return a.Began < b.Began; });
  std::vector<Absence> absences;
  for (std::size_t i = 0; i + 1 < sorted.size(); ++i) {
    const DateValue next = sorted[i + 1].Began;
    absences.push_back({std::min(sorted[i].Alive, next), next, !sorted[i].Closed});
  }
  return absences;
}

bool Overlap(DateValue from, DateValue to, DateValue otherFrom, DateValue otherTo) {
  return from < otherTo && otherFrom < to;
}

/// The incidents of the span, those of a run that has ended closed, and the crashes that follow from the runs.
std::vector<HistoryIncident> Incidents(const HistoryRows& rows, const std::vector<Absence>& absences) {
  std::vector<HistoryIncident> incidents = rows.Incidents;
  for (HistoryIncident& incident : incidents) {
    if (incident.Ended || GoesOn(rows.Runs, incident.Began)) continue;
    incident.Ended = std::max(incident.Began, RunAt(rows.Runs, incident.Began)->Alive);
    incident.Seconds = SecondsBetween(incident.Began, *incident.Ended);
  }
  for (const Absence& absence : absences) {
    if (!absence.Crashed) continue;
    const bool told =
        std::any_of(rows.Incidents.begin(), rows.Incidents.end(), [&](const HistoryIncident& one) {
          return one.Kind == IncidentKind::Crash && one.Began >= absence.From && one.Began <= absence.To;
        });
    if (told) continue;
    incidents.push_back({.Kind = IncidentKind::Crash,
                         .Began = absence.From,
                         .Ended = absence.To,
                         .Seconds = SecondsBetween(absence.From, absence.To),
                         .Cause = "the program ended without being closed"});
  }
  std::stable_sort(incidents.begin(), incidents.end(),
                   [](const HistoryIncident& a, const HistoryIncident& b) { return a.Began < b.Began; });
  return incidents;
}

using RunningEvent = std::optional<HistoryEvent>;

bool Is(const RunningEvent& running, const HistoryEvent& event) {
  return running && running->Entry == event.Entry && running->Due == event.Due &&
         running->Began == event.Began;
}

/// Writes one event's story.
class StoryTeller {
 public:
  StoryTeller(const HistoryRows& rows, const std::vector<HistoryIncident>& incidents,
              const std::vector<Absence>& absences, DateValue now, const RunningEvent& running)
      : rows_(rows), incidents_(incidents), absences_(absences), now_(now), running_(running) {}

  /// `parts` are the rows of one run of an entry, the first begun first.
  [[nodiscard]] EventStory Tell(const std::vector<HistoryEvent>& parts,
                                std::vector<HistorySong> songs) const {
    const HistoryEvent& last = parts.back();
    EventStory story{.Entry = last.Entry,
                     .Channel = last.Channel,
                     .Station = last.Station,
                     .Due = last.Due,
                     .Until = last.Due.AddSeconds(last.PlannedSeconds),
                     .Began = parts.front().Began,
                     .Ended = {},
                     .State = EventState::Missed,
                     .Why = last.WhyNot,
                     .Kept = 0,
                     .KeptLater = 0,
                     .Dropped = 0,
                     .MissingSeconds = 0,
                     .Missing = {},
                     .Songs = std::move(songs)};
    if (story.Began) TellEnd(last, story);
    for (const HistorySong& song : story.Songs) {
      ++(platform::IsKept(song.Fate) ? story.Kept : story.Dropped);
      if (song.Fate == SongFate::KeptLater) ++story.KeptLater;
    }
    TellMissing(last, story);
    return story;
  }

 private:
  void TellEnd(const HistoryEvent& last, EventStory& story) const {
    if (last.Ended) {
      story.Ended = last.Ended;
      story.State = story.Why.empty() ? EventState::Completed : EventState::BrokenOff;
    } else if (Is(running_, last) || GoesOn(rows_.Runs, *last.Began)) {
      story.State = EventState::Running;
    } else {
      story.Ended = std::max(*last.Began, RunAt(rows_.Runs, *last.Began)->Alive);
      story.State = EventState::BrokenOff;
      story.Why = "the program ended in its middle";
    }
  }

  void TellMissing(const HistoryEvent& last, EventStory& story) const {
    // What is planned, as far as it has passed.
    std::int64_t planned = last.PlannedSeconds;
    DateValue end = story.Until;
    if (story.State == EventState::Running && now_ < end) {
      end = std::max(now_, story.Due);
      // The song in hand is in no row yet, and is not missing.
      if (!story.Songs.empty()) end = std::max(story.Songs.back().Ended, story.Due);
      planned = std::min(planned, SecondsBetween(story.Due, end));
      if (story.Songs.empty()) return;
    }
    // Arithmetic of lengths, so that a step of the clock in the middle of an event makes no difference.
    std::int64_t coveredMs = 0;
    for (const HistorySong& song : story.Songs)
      if (IsAccountedFor(song.Fate)) coveredMs += song.LengthMs - std::min(song.SilentMs, song.LengthMs);
    AddGaps(last, end, story);
    AddLosses(story);
    for (const MissingPart& part : story.Missing)
      if (part.Intended) coveredMs += part.Seconds * 1000;
    story.MissingSeconds = std::max<std::int64_t>(0, planned - coveredMs / 1000);
    if (story.MissingSeconds < kNoticeableTotal) story.MissingSeconds = 0;
  }

  /// Its sound is in a file, or was dropped as the user has it.
  static bool IsAccountedFor(SongFate fate) { return fate != SongFate::Failed && fate != SongFate::NoSound; }

  /// The time between the captures, before the first one and after the last one.
  void AddGaps(const HistoryEvent& last, DateValue end, EventStory& story) const {
    DateValue from = story.Due;
    bool first = true;
    for (const HistorySong& song : story.Songs) {
      // A clock that is set forward within a song seems to have shifted the song's beginning.
      AddGap({from, song.Began, song.Ended}, story, first && last.WholeSongs);
      first = false;
      const DateValue soundUntil = song.Began.AddSeconds((song.LengthMs + song.MissingMs) / 1000);
      from = std::max(from, IsAccountedFor(song.Fate) ? std::max(soundUntil, song.Ended) : song.Began);
    }
    AddGap({from, end, end}, story, false);
  }

  struct Gap {
    DateValue From;
    DateValue To;
    DateValue StepsUntil;  ///< steps of the clock up to here may be the reason too
  };

  void AddGap(const Gap& gap, EventStory& story, bool waitsForWholeSong) const {
    const auto [from, to, stepsUntil] = gap;
    if (SecondsBetween(from, to) < kNoticeableGap) return;
    MissingPart part{
        .From = from, .To = to, .Seconds = SecondsBetween(from, to), .Why = {}, .Intended = false};
    part.Why = WhyBetween(from, to, stepsUntil);
    if (part.Why.empty() && story.State == EventState::Missed) part.Why = story.Why;
    if (part.Why.empty() && story.Ended && from <= *story.Ended && *story.Ended <= to) part.Why = story.Why;
    if (part.Why.empty() && waitsForWholeSong) {
      part.Why = "before the first whole song";
      part.Intended = true;
    }
    story.Missing.push_back(std::move(part));
  }

  /// Sound that is missing inside a song, and songs that could not be written.
  void AddLosses(EventStory& story) const {
    for (const HistorySong& song : story.Songs) {
      if (!IsAccountedFor(song.Fate)) continue;
      const std::int64_t seconds = (song.MissingMs + song.SilentMs + 500) / 1000;
      if (seconds < 1) continue;
      const std::string inSong =
          song.MissingMs >= song.SilentMs ? "sound was lost in this song" : "there is silence in this song";
      const std::string why = WhyBetween(song.Began, song.Ended, song.Ended);
      story.Missing.push_back({.From = song.Began,
                               .To = song.Ended,
                               .Seconds = seconds,
                               .Why = why.empty() ? inSong : why,
                               .Intended = false});
    }
    std::stable_sort(story.Missing.begin(), story.Missing.end(),
                     [](const MissingPart& a, const MissingPart& b) { return a.From < b.From; });
  }

  /// What went wrong in that time, each thing once.
  [[nodiscard]] std::string WhyBetween(DateValue from, DateValue to, DateValue stepsUntil) const {
    std::vector<std::string> causes;
    const auto add = [&causes](std::string cause) {
      if (!cause.empty() && std::find(causes.begin(), causes.end(), cause) == causes.end())
        causes.push_back(std::move(cause));
    };
    for (const HistoryIncident& incident : incidents_) {
      const DateValue until = incident.Ended.value_or(std::max(now_, incident.Began));
      // Both ends count: the end of a second is the beginning of the next one.
      const DateValue last = incident.Kind == IncidentKind::ClockStep ? std::max(to, stepsUntil) : to;
      if (incident.Began <= last && from <= until)
        add(fmt::format("{}: {}", KindText(incident.Kind), incident.Cause));
    }
    for (const Absence& absence : absences_)
      if (!absence.Crashed && Overlap(absence.From, absence.To, from, to)) add("the program was not running");
    for (const HistorySong& song : rows_.Songs)
      if (!IsAccountedFor(song.Fate) && Overlap(song.Began, song.Ended, from, to)) add(song.Reason);
    std::string why;
    for (const std::string& cause : causes) why += (why.empty() ? "" : "; ") + cause;
    return why;
  }

  const HistoryRows& rows_;
  const std::vector<HistoryIncident>& incidents_;
  const std::vector<Absence>& absences_;
  DateValue now_;
  const RunningEvent& running_;
};

/// The rows of events, those of one run of an entry together, in the order of their due moments. What runs is the last of
/// its group, even if the clock was set back before it began.
std::vector<std::vector<HistoryEvent>> Grouped(std::vector<HistoryEvent> events,
                                               const RunningEvent& running) {
  const auto order = [&running](const HistoryEvent& event) {
    return std::tuple(event.Due, event.Entry, Is(running, event), event.Began.value_or(DateValue()));
  };
  std::sort(events.begin(), events.end(),
            [&order](const HistoryEvent& a, const HistoryEvent& b) { return order(a) < order(b); });
  std::vector<std::vector<HistoryEvent>> groups;
  for (HistoryEvent& event : events) {
    const bool goesOn = !groups.empty() && groups.back().front().Entry == event.Entry &&
                        groups.back().front().Due == event.Due;
    if (!goesOn) groups.emplace_back();
    groups.back().push_back(std::move(event));
  }
  return groups;
}

/// The group whose event a song was captured for: the last one of its entry that had begun. The count if there is none.
std::size_t GroupOf(const HistorySong& song, const std::vector<std::vector<HistoryEvent>>& groups) {
  std::size_t found = groups.size();
  for (std::size_t i = 0; i < groups.size(); ++i) {
    for (const HistoryEvent& part : groups[i]) {
      if (part.Entry == song.Event && part.Began && *part.Began <= song.Began.AddSeconds(kNoticeableGap))
        found = i;
    }
  }
  return found;
}

}  // namespace

Report MakeReport(const HistoryRows& rows, DateValue from, DateValue to, const RunningEvent& running) {
  Report report{.From = from, .To = to, .Events = {}, .OtherSongs = {}, .Incidents = {}, .Advice = {}};
  const std::vector<Absence> absences = Absences(rows.Runs);
  report.Incidents = Incidents(rows, absences);

  const std::vector<std::vector<HistoryEvent>> groups = Grouped(rows.Events, running);
  std::vector<std::vector<HistorySong>> songs(groups.size());
  for (const HistorySong& song : rows.Songs) {
    const std::size_t group = song.Event == 0 ? groups.size() : GroupOf(song, groups);
    if (group < groups.size()) {
      songs[group].push_back(song);
    } else if (song.Fate != SongFate::NotWanted && song.Fate != SongFate::NotWhole) {
      report.OtherSongs.push_back(song);
    }
  }
  const StoryTeller teller(rows, report.Incidents, absences, to, running);
  for (std::size_t i = 0; i < groups.size(); ++i)
    report.Events.push_back(teller.Tell(groups[i], std::move(songs[i])));
  report.Advice = AdviceFor(report);
  return report;
}

}  // namespace kestrune::history
