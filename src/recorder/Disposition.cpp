#include "recorder/Disposition.h"

#include <fmt/format.h>

#include "recorder/SongName.h"

namespace kestrune::recorder {
namespace {

using platform::SongFate;

std::string PathOf(const CaptureRecord& capture, const std::string& suffix) {
  return capture.FileName + suffix + "." + capture.Extension;
}

std::string NameOf(const CaptureRecord& capture, std::string_view suffix) {
  return fmt::format("{} - {}{}", capture.Artist, capture.Song, suffix);
}

constexpr const char* kDuplicate = ", duplicate song in output directory";

}  // namespace

CaptureEnding EndingNow(const State& state) {
  const RecordingState& recording = state.Recording;
  const Modes modes(state);
  return {.NotWhole = recording.WaitingForNextSong && !recording.StopPending,
          .Incomplete = recording.Incomplete,
          .Grab = modes.CheckGrab(),
          .Kill = modes.CheckKill(),
          .Artist = recording.LastArtist,
          .Song = recording.LastSong,
          .Channel = state.Radio.ChannelNumber};
}

Disposition::Disposition(State& state, const Parts& parts, base::EventLoop& loop, base::Journal& journal)
    : state_(state.Recording),
      settings_(state.Settings),
      fileSpecs_(parts.FileSpecs),
      restrictions_(parts.Restrictions),
      songFiles_(parts.SongFiles),
      loop_(loop),
      journal_(journal),
      chronicle_(parts.Chronicle),
      shelving_(parts.Shelving) {}

void Disposition::Dispose(CaptureRecord& capture) {
  if (capture.Ending.NotWhole) {
    if (capture.KeepAtEnd) return DisposeUnwanted(capture);
    return Drop(capture, SongFate::NotWhole, "", true);
  }

  if (capture.Piece && capture.LengthMs == 0) {
    // The song's other piece has its line, and the failure has been said.
    songFiles_.Discard(capture);
    return;
  }

  const bool incomplete = capture.Ending.Incomplete || capture.Outcome.Flawed();
  Verdict verdict{.Keep = true,
                  .Suffix = incomplete ? " (Incomplete)" : "",
                  .Seconds = capture.LengthMs / 1000,
                  .Fate = incomplete ? SongFate::KeptIncomplete : SongFate::Kept,
                  .Reason = {}};
  TestLength(capture, verdict);
  TestSound(capture, verdict);
  TestLists(capture, verdict);
  TestDuplicates(capture, verdict);
  CarryOut(capture, verdict);
  loop_.PumpEvents();
}

void Disposition::DisposeUnwanted(CaptureRecord& capture) {
  const bool incomplete = !capture.Ending.Whole || capture.Outcome.Flawed();
  if (!capture.KeepAtEnd || capture.LengthMs == 0) return Drop(capture, SongFate::NotWanted, "", incomplete);
  Verdict verdict{.Keep = true,
                  .Suffix = incomplete ? " (Incomplete)" : "",
                  .Seconds = capture.LengthMs / 1000,
                  .Fate = SongFate::KeptLater,
                  .Reason = {},
                  .ForUser = true};
  TestDuplicates(capture, verdict);
  CarryOut(capture, verdict);
}

void Disposition::CarryOut(CaptureRecord& capture, Verdict& verdict) {
  if (verdict.Keep) Keep(capture, verdict);
  if (!verdict.Keep) return Drop(capture, verdict.Fate, verdict.Reason, !verdict.Suffix.empty());
  chronicle_.SongEnded(capture, verdict.Fate, verdict.Reason);
  Remember(capture, verdict.Fate);
  shelving_.KeepBounds();
}

void Disposition::Drop(CaptureRecord& capture, SongFate fate, std::string_view reason, bool incomplete) {
  shelving_.Take(capture, fate, incomplete);
  if (capture.LengthMs > 0 || fate != SongFate::NotWanted) {
    chronicle_.SongEnded(capture, fate, reason);
    Remember(capture, fate);
  }
  songFiles_.Discard(capture);
  shelving_.KeepBounds();
}

void Disposition::Remember(const CaptureRecord& capture, SongFate fate) {
  const CaptureOutcome& outcome = capture.Outcome;
  state_.EndedSongs.Add({.Number = 0,
                         .Channel = capture.Naming.Values.Channel,
                         .Station = capture.Naming.Values.Station,
                         .Artist = capture.Artist,
                         .Song = capture.Song,
                         .LengthMs = capture.LengthMs,
                         .Fate = fate,
                         .Path = IsKept(fate) ? outcome.FinalName : outcome.ShelfName});
}

void Disposition::Keep(CaptureRecord& capture, Verdict& verdict) {
  // The name may be taken at any moment, by another unit for one.
  MovedSong moved = songFiles_.Move(capture, PathOf(capture, verdict.Suffix), loop_.Now());
  while (moved.Where == MovedSong::To::NameTaken && SavesDuplicate(capture)) {
    AdvanceName(capture.FileName);
    moved = songFiles_.Move(capture, PathOf(capture, verdict.Suffix), loop_.Now());
  }
  switch (moved.Where) {
    case MovedSong::To::FinalName:
      if (verdict.ForUser) {
        verdict.Fate = SongFate::KeptLater;
        journal_.DoLog(KeptLine(capture.Naming.Values.Channel, NameOf(capture, verdict.Suffix),
                                capture.LengthMs, capture.Extension));
        break;
      }
      ++state_.RecordedCount;
      journal_.DoLog(LogLine("Recorded: Channel ", capture, verdict, " " + fileSpecs_.FileFormatString()));
      break;
    case MovedSong::To::NameTaken:
      Reject(capture, verdict, SongFate::Duplicate, kDuplicate);
      break;
    case MovedSong::To::OwnName:
      verdict.Fate = SongFate::KeptUnnamed;
      verdict.Reason = moved.Cause;
      journal_.DoLog(LogLine("Not Renamed: Channel ", capture, verdict,
                             fmt::format(", kept as \"{}\": {}", moved.Path, moved.Cause)));
      break;
    case MovedSong::To::Nowhere:
      Reject(capture, verdict, SongFate::Failed, ", " + moved.Cause);
      break;
  }
}

void Disposition::TestLength(const CaptureRecord& capture, Verdict& verdict) {
  if (verdict.Seconds < settings_.MinSongLength && !PassFor(capture, verdict)) {
    ++state_.TooShortCount;
    Reject(capture, verdict, SongFate::TooShort,
           ", Minimum length: " + FormatSeconds(settings_.MinSongLength));
  }
  // A capture can count in both tests, and the word is the same in both lines.
  if (verdict.Seconds > settings_.MaxSongLength && settings_.MaxSongLength > 0 &&
      !PassFor(capture, verdict)) {
    ++state_.TooLongCount;
    Reject(capture, verdict, SongFate::TooLong,
           ", Minimum length: " + FormatSeconds(settings_.MaxSongLength));
  }
}

void Disposition::TestSound(const CaptureRecord& capture, Verdict& verdict) {
  if (!verdict.Keep || capture.LengthMs > 0) return;
  const std::string& cause = capture.Outcome.Failure();
  Reject(capture, verdict, cause.empty() ? SongFate::NoSound : SongFate::Failed,
         cause.empty() ? ", no sound came" : ", no sound was recorded: " + cause);
}

void Disposition::TestLists(const CaptureRecord& capture, Verdict& verdict) {
  // An event's captures are judged by its own modes, also after its end.
  const CaptureOutcome& outcome = capture.Outcome;
  const CaptureEnding& ending = capture.Ending;
  const bool grab = outcome.Event != 0 ? outcome.Modes.Grab : ending.Grab;
  const bool kill = outcome.Event != 0 ? outcome.Modes.Kill : ending.Kill;
  if (grab && verdict.Keep && !restrictions_.IsInGrabList(ending.Artist, ending.Song) &&
      !PassFor(capture, verdict)) {
    ++state_.RestrictedCount;
    Reject(capture, verdict, SongFate::NotGrabbed, ", not found in the grab list");
  }
  if (kill && verdict.Keep && restrictions_.IsInKillList(ending.Artist, ending.Song) &&
      !PassFor(capture, verdict)) {
    ++state_.RestrictedCount;
    Reject(capture, verdict, SongFate::Killed, ", found in the kill list");
  }
}

void Disposition::TestDuplicates(CaptureRecord& capture, Verdict& verdict) {
  if (!verdict.Keep) return;
  const auto taken = [&] { return songFiles_.Exists(PathOf(capture, verdict.Suffix)); };
  if (SavesDuplicate(capture)) {
    while (taken()) AdvanceName(capture.FileName);
  } else if (taken()) {
    Reject(capture, verdict, SongFate::Duplicate, kDuplicate);
  }
}

bool Disposition::PassFor(const CaptureRecord& capture, Verdict& verdict) {
  verdict.ForUser = verdict.ForUser || capture.KeepAtEnd;
  return capture.KeepAtEnd;
}

bool Disposition::SavesDuplicate(const CaptureRecord& capture) const {
  return settings_.SaveDuplicates || capture.Piece;
}

void Disposition::Reject(const CaptureRecord& capture, Verdict& verdict, SongFate fate,
                         const std::string& why) {
  verdict.Keep = false;
  verdict.Fate = fate;
  verdict.Reason = why;
  journal_.DoLog(LogLine("Not Recorded: Channel ", capture, verdict, why));
}

std::string Disposition::LogLine(std::string_view head, const CaptureRecord& capture, const Verdict& verdict,
                                 std::string_view tail) const {
  return fmt::format("{}{}  \"{}\"  Song length: {}{}", head, capture.Ending.Channel,
                     NameOf(capture, verdict.Suffix), FormatSeconds(verdict.Seconds), tail);
}

}  // namespace kestrune::recorder
