#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "base/DateValue.h"

namespace kestrune::platform {

// What the record of what happened consists of. Moments are local civil time, texts UTF-8. The numbers of the two
// enumerations are stored: a new value goes to the end.

/// What became of a song that ended on the tuned channel.
enum class SongFate : std::uint8_t {
  Kept = 0,
  KeptIncomplete = 1,  ///< with "(Incomplete)" in its name
  KeptUnnamed = 2,     ///< on the disk, but not under the name it should have
  TooShort = 3,
  TooLong = 4,
  NotGrabbed = 5,  ///< not on the Grab lists
  Killed = 6,      ///< on the Kill lists
  Duplicate = 7,
  NoSound = 8,
  Failed = 9,      ///< it could not be written, or its file is gone
  NotWhole = 10,   ///< captured before the first whole song began
  NotWanted = 11,  ///< nobody was recording
  KeptLater = 12   ///< nobody was recording, or it would have been dropped, but a user asked for it
};
inline constexpr int kSongFates = 13;

[[nodiscard]] constexpr bool IsKept(SongFate fate) {
  return fate == SongFate::Kept || fate == SongFate::KeptIncomplete || fate == SongFate::KeptUnnamed ||
         fate == SongFate::KeptLater;
}

/// A place where a cut might have fallen.
struct CutCandidate {
  std::int32_t LagMs = 0;  ///< after the stamp of the text
  double Chance = 0;       ///< that the new song begins there, 0 to 1

  bool operator==(const CutCandidate&) const = default;
};
inline constexpr std::size_t kMostCandidates = 5;

/// How a song was cut from the one that follows it, by listening. Chances are kept to a thousandth.
struct HistoryCut {
  std::int64_t Frame = 0;  ///< the first frame of the new song, counted from the start of the sound
  std::int32_t LagMs = 0;  ///< that frame minus the stamp of the text
  std::string Reason;      ///< a word, such as "gap" or "lag"
  double Confidence = 0;   ///< the chance that the true beginning is within 0.1 s, 0 to 1
  std::vector<CutCandidate> Candidates;  ///< the likeliest first; no more than kMostCandidates are kept
  std::string Next;                      ///< artist and title of the song that follows

  bool operator==(const HistoryCut&) const = default;
};

/// A song that ended on the tuned channel.
struct HistorySong {
  base::DateValue Began;
  base::DateValue Ended;
  std::int16_t Channel = 0;
  std::string Station;
  std::string Genre;
  std::string Artist;
  std::string Title;
  std::int64_t LengthMs = 0;  ///< of the sound captured
  SongFate Fate = SongFate::Kept;
  std::string Reason;             ///< why, as the log says it; may be empty
  std::string File;               ///< full path, on the shelf if it was not kept; empty if there is none
  std::int16_t Event = 0;         ///< the schedule entry that ran when it began, 1 to 10; 0 for none
  std::int64_t SamplesLost = 0;   ///< a sample of each sound channel counts as one
  std::int64_t MissingMs = 0;     ///< their length
  std::int64_t SilentMs = 0;      ///< how much of it was silence that was noticed
  std::int64_t OverloadedMs = 0;  ///< how much of it was at full scale
  std::int64_t LineLostMs = 0;    ///< how long the radio was lost meanwhile
  std::optional<HistoryCut> Cut;  ///< its end; nothing if nobody listened for it

  bool operator==(const HistorySong&) const = default;
};

/// One run of a schedule entry. Entry, Due and Began together name it: a row with the same three replaces the older.
struct HistoryEvent {
  std::int16_t Entry = 0;  ///< 1 to 10
  base::DateValue Due;
  std::int64_t PlannedSeconds = 0;  ///< that pass from Due to its end, steps to and from summer time counted
  std::int16_t Channel = 0;
  std::string Station;
  bool WholeSongs = false;               ///< begins to record with the first whole song
  std::optional<base::DateValue> Began;  ///< nothing if it never did
  std::optional<base::DateValue> Ended;  ///< nothing while it runs, and if nobody saw its end
  int Kept = 0;                          ///< songs, as the log says at its end
  int Dropped = 0;
  std::string WhyNot;  ///< why it did not run, or ended early; empty if all was well

  bool operator==(const HistoryEvent&) const = default;
};

/// What kind of thing outside has failed.
enum class IncidentKind : std::uint8_t { Line = 0, Sound = 1, Disk = 2, Sleep = 3, ClockStep = 4, Crash = 5 };
inline constexpr int kIncidentKinds = 6;

/// Something outside that failed. Kind and Began together name it: a row with the same two replaces the older.
struct HistoryIncident {
  IncidentKind Kind = IncidentKind::Line;
  base::DateValue Began;
  std::optional<base::DateValue> Ended;  ///< nothing while it lasts, and if nobody saw its end
  std::int64_t Seconds = 0;              ///< that really passed until its end, whatever the wall clock showed
  std::string Cause;                     ///< one line

  bool operator==(const HistoryIncident&) const = default;
};

/// One run of the program. Began names it: a row with the same moment replaces the older.
struct HistoryRun {
  base::DateValue Began;
  base::DateValue Alive;  ///< when it was last heard of
  bool Closed = false;    ///< it ended by itself; if not, and another run follows, it was killed or crashed

  bool operator==(const HistoryRun&) const = default;
};

/// What a channel played.
struct HistoryPlay {
  std::int16_t Channel = 0;
  std::string Station;
  std::string Genre;
  std::string Artist;
  std::string Title;
  base::DateValue From;  ///< when it was first heard of, which is some time after its beginning
  base::DateValue To;

  bool operator==(const HistoryPlay&) const = default;
};

/// What was learned of how far the text of a channel runs ahead of its sound. Channel names it: a row with the same
/// channel replaces the older. These are kept without a limit of time.
struct HistoryLag {
  std::int16_t Channel = 0;  ///< 1 to 255
  base::DateValue Changed;   ///< when it was last renewed
  std::string Model;         ///< one line, which only its writer understands

  bool operator==(const HistoryLag&) const = default;
};

/// What became later of the file of a song that was handed over before. It changes the newest song with that file.
struct HistoryMove {
  std::string From;
  std::string To;                ///< empty if the file is gone
  std::optional<SongFate> Fate;  ///< nothing if it stays as it was

  bool operator==(const HistoryMove&) const = default;
};

/// Changes the last of the songs that has that file; false if none has it.
[[nodiscard]] inline bool Moved(std::vector<HistorySong>& songs, const HistoryMove& move) {
  for (auto song = songs.rbegin(); song != songs.rend(); ++song) {
    if (move.From.empty() || song->File != move.From) continue;
    song->File = move.To;
    song->Fate = move.Fate.value_or(song->Fate);
    return true;
  }
  return false;
}

struct HistoryRows {
  std::vector<HistoryMove> Moves;  ///< they come before the songs
  std::vector<HistorySong> Songs;
  std::vector<HistoryEvent> Events;
  std::vector<HistoryIncident> Incidents;
  std::vector<HistoryRun> Runs;
  std::vector<HistoryPlay> Plays;
  std::vector<HistoryLag> Lags;

  [[nodiscard]] std::size_t Count() const {
    return Songs.size() + Moves.size() + Events.size() + Incidents.size() + Runs.size() + Plays.size() +
           Lags.size();
  }

  bool operator==(const HistoryRows&) const = default;
};

}  // namespace kestrune::platform
