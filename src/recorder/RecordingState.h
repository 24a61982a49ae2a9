#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>

#include "base/DateValue.h"
#include "platform/CaptureFormat.h"
#include "recorder/CaptureOutcome.h"
#include "recorder/EndedSongs.h"
#include "recorder/Phase.h"
#include "recorder/SongName.h"

namespace kestrune::recorder {

/// What the fate of a capture follows from, as it was at the moment when the capture ended.
struct CaptureEnding {
  bool NotWhole = false;    ///< it was captured before the first whole song began
  bool Incomplete = false;  ///< it did not begin, or end, at a boundary
  bool Grab = false;        ///< the mode switches; an event's captures are judged by the event's own
  bool Kill = false;
  bool Whole = false;  ///< it began and ended at a boundary
  std::string Artist;  ///< what the cycle last acted on, which the lists are asked for
  std::string Song;
  std::int16_t Channel = 0;  ///< tuned at that moment
};

/// One capture: where it lies, what it will be called, and what the radio said when it began.
struct CaptureRecord {
  std::string FileName;        ///< full path of the final file, without suffix, point and extension
  std::string Extension;       ///< the format's code in lower case, without a point
  std::int64_t LengthMs = 0;   ///< milliseconds captured so far; at the end, those that are in the file
  std::int64_t WrittenMs = 0;  ///< those that the file has taken so far
  std::string Song;
  std::string Artist;
  std::string Genre;
  /// Folder of the final file, with a separator at its end; the capture itself lies here too.
  std::string Folder;
  CaptureOutcome Outcome = {};
  /// The beginning of the song is in another file: it gets a name of its own also if duplicates are not saved.
  bool Piece = false;
  /// A user wants the song: it is kept at its end, whether or not anybody records; lists and lengths do not count.
  bool KeepAtEnd = false;
  /// What FileName follows from. A recording that takes in a capture already begun gives it the session's values.
  SongNaming Naming = {};
  CaptureEnding Ending = {};
  /// What its file is made in, if that is created after the song has begun; see AwaitedCut.
  platform::CaptureFormat Format = {};
};

/// A song that has ended where the sound is still to be cut.
struct AwaitedCut {
  CaptureRecord Song = {};
  std::int16_t Slot = 0;  ///< of its file, 0 or 1
  std::int16_t Channel = 0;
  std::int64_t Stamp = 0;                  ///< the frame that was captured when the text changed
  std::chrono::milliseconds Since{0};      ///< then, of the steady clock
  bool Wanted = false;                     ///< to be kept, if its fate allows it
  std::optional<std::int64_t> Frame = {};  ///< the chosen one
  std::int64_t OverlapMs = 0;              ///< of the files, around it
};

/// In place of artist and title it means that no song has been acted on, and so forces a difference.
inline constexpr const char* kNoSong = "xyzzy";

/// The state of recording that the update cycle, the commands and the disposition share.
struct RecordingState {
  recorder::Phase Phase = recorder::Phase::Idle;
  bool RecordRequested = false;  ///< set and cleared together with RecordArmed by the two commands
  bool RecordArmed = false;
  bool WaitingForNextSong = false;  ///< whole songs: armed, the first whole song has not begun
  bool StartPending = false;        ///< record from now on without waiting for a boundary
  bool StopPending = false;         ///< finish the capture in hand at the next tick
  bool Incomplete = false;          ///< the capture in hand did not begin, or will not end, at a boundary

  std::int16_t CaptureSlot = 0;  ///< the slot of the song in hand, 0 or 1
  std::array<CaptureRecord, 2> CaptureSlots;
  /// The songs before the one in hand whose cuts are awaited, in their order. The first is being written; the others, and
  /// the song in hand, get their files one after the other, in slots that take turns.
  std::deque<AwaitedCut> AwaitedCuts;

  bool SongBoundarySeen = false;  ///< the capture in hand began exactly at a song boundary
  base::DateValue SongBoundaryTime;
  bool BoundaryBusy = false;     ///< a boundary is being taken, events run inside it
  bool SkipSongDelay = false;    ///< the next boundary is taken at once
  bool ForceSongChange = false;  ///< the next tick takes a boundary even if songs are not split
  std::int16_t SettleTicks = 0;  ///< ticks that only follow the text, and see no change of song

  std::string LastArtist;  ///< what the cycle last acted on; may be kNoSong
  std::string LastSong;
  std::string LastGenre;
  std::string LastStation;
  std::int16_t LastChannel = 0;

  base::DateValue SessionStart;
  base::DateValue RecordStartTime;
  std::int16_t RecordedCount = 0;
  std::int16_t TooShortCount = 0;
  std::int16_t TooLongCount = 0;
  std::int16_t RestrictedCount = 0;

  recorder::EndedSongs EndedSongs;

  bool Muted = false;           ///< the user has muted the radio; Record takes the mute away
  bool ChannelsLoaded = false;  ///< the walk through the radio's channels has ended once

  /// True while a song is being kept: the status text begins with "Recording".
  [[nodiscard]] bool IsRecording() const { return recorder::IsRecording(Phase); }
  /// True while the length of the capture in hand is shown: it is the file that the user will get.
  [[nodiscard]] bool ShowsLength() const { return IsRecording() && !StartPending && !WaitingForNextSong; }
  /// True while the capture in hand is to be kept at its end.
  [[nodiscard]] bool CaptureWanted() const {
    return (RecordRequested && RecordArmed && !WaitingForNextSong) || StartPending || StopPending;
  }
  /// True while the channel must not be changed by hand.
  [[nodiscard]] bool GetRecordingStatus() const {
    return RecordRequested || (RecordArmed && !WaitingForNextSong);
  }
};

}  // namespace kestrune::recorder
