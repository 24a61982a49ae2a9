#include "history/Advice.h"

#include <algorithm>
#include <cstddef>
#include <functional>

namespace kestrune::history {
namespace {

using platform::HistoryIncident;
using platform::HistorySong;
using platform::IncidentKind;
using platform::SongFate;

/// A song is overloaded if more than a hundredth of it is at full scale.
constexpr std::int64_t kOverloadedPart = 100;
constexpr std::int64_t kNoticeableMs = 1000;

std::string_view AdviceAgainst(IncidentKind kind) {
  switch (kind) {
    case IncidentKind::Line:
      return "The radio was lost: look at its power supply, its cable and the serial adapter.";
    case IncidentKind::Sound:
      return "The sound failed: look at the sound cable and the sound server, and keep other programs off "
             "the input.";
    case IncidentKind::Disk:
      return "The disk failed: make room, or choose another folder for the recordings.";
    case IncidentKind::Sleep:
      return "The computer slept: switch sleep off while events are due; \"systemctl mask sleep.target\" "
             "does.";
    case IncidentKind::ClockStep:
      return "The clock was set: let the computer keep its time by the network.";
    case IncidentKind::Crash:
      return "The program or the computer ended unexpectedly: look into the journal, and at the power. "
             "What it was recording should be in the folder \"Recovered\".";
  }
  return {};
}

void ForEachSong(const Report& report, const std::function<void(const HistorySong&)>& look) {
  for (const EventStory& event : report.Events) std::for_each(event.Songs.begin(), event.Songs.end(), look);
  std::for_each(report.OtherSongs.begin(), report.OtherSongs.end(), look);
}

bool AllDroppedFor(const EventStory& event, SongFate fate) {
  return event.Kept == 0 && !event.Songs.empty() &&
         std::all_of(event.Songs.begin(), event.Songs.end(),
                     [fate](const HistorySong& song) { return song.Fate == fate; });
}

}  // namespace

std::string_view KindText(IncidentKind kind) {
  switch (kind) {
    case IncidentKind::Line:
      return "radio";
    case IncidentKind::Sound:
      return "sound";
    case IncidentKind::Disk:
      return "disk";
    case IncidentKind::Sleep:
      return "sleep";
    case IncidentKind::ClockStep:
      return "clock";
    case IncidentKind::Crash:
      return "program";
  }
  return {};
}

std::string_view FateText(SongFate fate) {
  switch (fate) {
    case SongFate::Kept:
      return "kept";
    case SongFate::KeptIncomplete:
      return "kept, incomplete";
    case SongFate::KeptUnnamed:
      return "kept, not renamed";
    case SongFate::TooShort:
      return "too short";
    case SongFate::TooLong:
      return "too long";
    case SongFate::NotGrabbed:
      return "not on the Grab lists";
    case SongFate::Killed:
      return "on the Kill lists";
    case SongFate::Duplicate:
      return "duplicate";
    case SongFate::NoSound:
      return "no sound";
    case SongFate::Failed:
      return "not written";
    case SongFate::NotWhole:
      return "not whole";
    case SongFate::NotWanted:
      return "not wanted";
    case SongFate::KeptLater:
      return "kept later";
  }
  return {};
}

std::vector<std::string> AdviceFor(const Report& report) {
  std::vector<std::string> advice;
  const auto add = [&advice](std::string_view sentence) {
    if (std::find(advice.begin(), advice.end(), sentence) == advice.end()) advice.emplace_back(sentence);
  };
  for (const HistoryIncident& incident : report.Incidents) add(AdviceAgainst(incident.Kind));
  for (const EventStory& event : report.Events) {
    if (event.State == EventState::Missed)
      add("An event was missed: let the computer and Kestrune run before it is due.");
    if (AllDroppedFor(event, SongFate::NotGrabbed))
      add("No song of an event was on the Grab lists: look at the lists, or switch Grab off for its entry.");
    if (AllDroppedFor(event, SongFate::TooShort))
      add("All songs of an event were too short: look at the setting MinSongLength.");
  }
  ForEachSong(report, [&add](const HistorySong& song) {
    if (song.Fate == SongFate::Failed)
      add("Songs could not be written: look at the folder of the recordings, its rights and the room on its "
          "disk.");
    if (song.Fate == SongFate::NoSound) add("Songs came without sound: look at the input device.");
    if (song.MissingMs >= kNoticeableMs)
      add("Sound was lost: keep other work off the computer while it records, and do not restart the sound "
          "server.");
    if (song.SilentMs >= kNoticeableMs)
      add("There was silence: look at the sound cable, the mixer and the radio's mute.");
    if (song.OverloadedMs * kOverloadedPart > song.LengthMs)
      add("The input was overloaded: turn its level down.");
  });
  return advice;
}

}  // namespace kestrune::history
