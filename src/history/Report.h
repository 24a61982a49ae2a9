#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "base/DateValue.h"
#include "platform/HistoryRows.h"

namespace kestrune::history {

enum class EventState : std::uint8_t { Completed, Running, BrokenOff, Missed };

/// A part of an event that is in no file.
struct MissingPart {
  base::DateValue From;
  base::DateValue To;
  std::int64_t Seconds = 0;
  std::string Why;        ///< empty if nothing is known
  bool Intended = false;  ///< so it was asked for: before the first whole song

  bool operator==(const MissingPart&) const = default;
};

/// One run of a schedule entry, and what came of it. If the program was started again in its middle, both parts.
struct EventStory {
  std::int16_t Entry = 0;
  std::int16_t Channel = 0;
  std::string Station;
  base::DateValue Due;
  base::DateValue Until;                 ///< when it was to end
  std::optional<base::DateValue> Began;  ///< nothing if it never did
  std::optional<base::DateValue> Ended;  ///< nothing if it runs, or never began
  EventState State = EventState::Completed;
  std::string Why;    ///< why it was missed or broke off; empty if all was well
  int Kept = 0;       ///< songs
  int KeptLater = 0;  ///< of these, because a user asked for them
  int Dropped = 0;
  /// What is missing, all in all, in seconds: the planned time, less what is in a file (silence that was noticed is not) and what was dropped or left
  /// out as asked for. What falls short of half a minute is not counted.
  std::int64_t MissingSeconds = 0;
  std::vector<MissingPart> Missing;
  std::vector<platform::HistorySong> Songs;  ///< captured for it, kept and dropped, in their order

  bool operator==(const EventStory&) const = default;
};

/// What happened in a span of time.
struct Report {
  base::DateValue From;
  base::DateValue To;
  std::vector<EventStory> Events;                    ///< in the order of their due moments
  std::vector<platform::HistorySong> OtherSongs;     ///< recorded without an event
  std::vector<platform::HistoryIncident> Incidents;  ///< in their order; those without an end still last
  std::vector<std::string> Advice;                   ///< what to do about it, a sentence each

  bool operator==(const Report&) const = default;
};

/// The story of the rows of a span, as HistoryStore::ReadSpan gives them. `to` is the present moment. `running` is the
/// event that runs now, as it is known; without it the rows alone tell which does, and a clock that was set back since
/// another run of the program began can mislead them.
[[nodiscard]] Report MakeReport(const platform::HistoryRows& rows, base::DateValue from, base::DateValue to,
                                const std::optional<platform::HistoryEvent>& running = std::nullopt);

}  // namespace kestrune::history
