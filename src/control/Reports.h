#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "base/DateValue.h"
#include "platform/HistoryRows.h"

namespace kestrune::control {

/// What a running unit reports about itself. Texts are UTF-8, or whatever bytes a folder's name is made of.
struct StatusReport {
  bool Loading = false;    ///< the start still runs
  std::string Unit;        ///< empty for a single unit
  std::string Version;     ///< such as "3.0.29"
  int Port = 0;            ///< 0 while no radio is found, or it is lost
  std::string RadioLost;   ///< why the radio cannot be reached; empty if it can
  std::string RadioDoubt;  ///< why it may be on another channel; empty if it is not
  std::string RadioID;     ///< empty if it could not be read
  int ChannelNumber = 0;   ///< the tuned channel
  std::string Station;
  std::string Genre;
  std::string Artist;
  std::string Song;
  std::string Recording;  ///< the status text, such as "Waiting for next song"; empty when idle
  bool RecordRequested = false;
  bool WaitingForNextSong = false;
  std::int64_t CaptureLengthMs = 0;  ///< of the capture in hand
  bool Keep = false;                 ///< a user has asked for that capture
  std::string Warning;               ///< what has failed, in one sentence; empty if all is well
  std::string CaptureFailure;        ///< why nothing more reaches its file; empty if all is well
  int RecordedCount = 0;
  int TooShortCount = 0;
  int TooLongCount = 0;
  int RestrictedCount = 0;
  bool ChannelsLoading = false;
  int ChannelCount = 0;
  int ActiveSchedule = 0;  ///< 1 to 10, 0 if none runs
  std::string FileFormat;  ///< the code, such as "MP3"
  std::string FormatDescription;
  std::string FileDir;
  std::string InputDevice;  ///< the device's name
  int Satellite1 = 0;       ///< signal in percent, as the next two; 0 while the radio is lost
  int Satellite2 = 0;
  int Terrestrial = 0;
  std::int64_t SamplesCaptured = 0;  ///< since the start, a sample of each channel counted once
  std::int64_t SamplesLost = 0;
};

/// What the maker's server said of the latest version.
struct UpdateReport {
  std::string Running;          ///< such as "003.000.029"
  bool Newer = false;           ///< there is a newer version
  std::string DownloadAddress;  ///< of its installer; empty if the server named none
};

/// One row of the channel table.
struct ChannelReport {
  int Number = 0;
  std::string Station;
  std::string Genre;
  std::string Artist;
  std::string Song;
};

/// One of the ten entries of the schedule, as it counts now.
struct ScheduleReport {
  int Number = 0;    ///< 1 to 10
  bool Set = false;  ///< was ever set; if not, all but Enabled, Running and SecondsLeft are as here
  bool Enabled = false;
  std::string On;    ///< "Every Day", "Every Saturday" or "Dec 24, 2026"; empty if no start can be read
  std::string At;    ///< "8:00 PM"; empty with On
  int Minutes = -1;  ///< -1 if no length can be read, or it is negative
  int Channel = 0;
  std::string Station;  ///< empty if the channel is not known
  bool Integrel = false;
  bool Cleftune = false;
  bool Grab = false;
  bool Kill = false;
  std::string BitRate;  ///< empty if none was chosen
  std::string NextRun;  ///< such as "2026-12-24 20:00"; empty if it never comes
  bool Running = false;
  int SecondsLeft = 0;  ///< of a running entry
};

/// The Grab and Kill lists, in the order of the list file.
struct ListsReport {
  std::vector<std::string> GrabArtists;
  std::vector<std::string> GrabSongs;
  std::vector<std::string> KillArtists;
  std::vector<std::string> KillSongs;
};

/// A place where a cut might have fallen.
struct CutCandidateReport {
  int LagMs = 0;
  double Chance = 0;  ///< 0 to 1

  bool operator==(const CutCandidateReport&) const = default;
};

/// A cut between two songs that was found by listening.
struct CutReport {
  base::DateValue At;  ///< when the song ended, local time
  int Channel = 0;
  std::string Station;
  std::string Artist;      ///< of the song that ended
  std::string Song;        ///< the same
  std::string Next;        ///< artist and title of the song that follows
  std::int64_t Frame = 0;  ///< its first frame, counted from the start of the sound
  int LagMs = 0;           ///< how much later than the text it begins; negative: earlier
  std::string Reason;      ///< "gap", "onset", "novelty", "lag" or "text"
  double Confidence = 0;   ///< the chance that the cut is within 0.1 s of the true beginning, 0 to 1
  std::vector<CutCandidateReport> Candidates;  ///< at most five, the likeliest first

  bool operator==(const CutReport&) const = default;
};

/// A song on the shelf: captured, and not kept.
struct ShelvedReport {
  int Number = 0;  ///< 1 is the newest
  base::DateValue Ended;
  int Channel = 0;  ///< 0 if it is not known
  std::string Station;
  std::string Genre;
  std::string Artist;
  std::string Song;
  std::int64_t LengthMs = 0;                                ///< 0 if it is not known
  platform::SongFate Fate = platform::SongFate::NotWanted;  ///< why it was not kept
  bool Incomplete = false;
  std::int64_t Bytes = 0;
  std::string File;  ///< full path

  bool operator==(const ShelvedReport&) const = default;
};

/// What was learned of how far the text of a channel runs ahead of its sound.
struct StationLagReport {
  int Channel = 0;
  std::string Station;  ///< empty if the channel is not known
  int LagMs = 0;        ///< the middle of what is likely; negative: the text is late
  int JitterMs = 0;     ///< how much it varies
  int Changes = 0;      ///< of song that it was learned from

  bool operator==(const StationLagReport&) const = default;
};

/// A song of the Grab lists that plays on another channel.
struct HintReport {
  std::int64_t Number = 0;  ///< from 1, in the order of their beginnings since the unit's start
  base::DateValue Began;    ///< when it was first heard of, local time
  int Channel = 0;
  std::string Station;
  std::string Artist;
  std::string Song;
  std::string
      Text;  ///< all of it in one line, such as "Now on 47 Campfire Folk: Abigail Wren - Winter Apples"

  bool operator==(const HintReport&) const = default;
};

/// What `schedule set` is to change; what is not given stays.
struct ScheduleChange {
  int Number = 0;  ///< 1 to 10
  /// A date, or as a coded day of January 1967 what recurs.
  std::optional<base::DateValue> On;
  std::optional<int> At;       ///< minutes since midnight
  std::optional<int> For;      ///< minutes, 1 to 2879
  std::optional<int> Channel;  ///< 1 to 255
  std::optional<bool> Integrel;
  std::optional<bool> Cleftune;
  std::optional<bool> Grab;
  std::optional<bool> Kill;
  std::optional<std::string> BitRate;  ///< an item of the scheduler's list
};

}  // namespace kestrune::control
