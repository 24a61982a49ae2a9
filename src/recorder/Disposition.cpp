#include "recorder/Disposition.h"

#include <fmt/format.h>

#include "recorder/SongName.h"

namespace kestrune::recorder {
namespace {

std::string PathOf(const CaptureRecord& capture, const std::string& suffix) {
  return capture.FileName + suffix + "." + capture.Extension;
}

constexpr const char* kDuplicate = ", duplicate song in output directory";

}  // namespace

Disposition::Disposition(State& state, const config::FileSpecs& fileSpecs,
                         const schedule::Restrictions& restrictions, SongFiles& songFiles,
                         base::EventLoop& loop, base::Journal& journal)
    : state_(state.Recording),
      radio_(state.Radio),
      settings_(state.Settings),
      fileSpecs_(fileSpecs),
      modes_(state),
      restrictions_(restrictions),
      songFiles_(songFiles),
      loop_(loop),
      journal_(journal) {}

void Disposition::Dispose(std::int16_t finished) {
  CaptureRecord& capture = state_.CaptureSlots[static_cast<std::size_t>(finished)];
  const bool cutAtItsBeginning = state_.WaitingForNextSong && !state_.StopPending;
  if (cutAtItsBeginning) {
    songFiles_.Discard(capture);
    state_.Incomplete = false;
    return;
  }

  if (capture.Piece && capture.LengthMs == 0) {
    // The song's other piece has its line, and the failure has been said.
    songFiles_.Discard(capture);
    state_.Incomplete = false;
    return;
  }

  const bool incomplete = state_.Incomplete || capture.Outcome.Flawed();
  Verdict verdict{
      .Keep = true, .Suffix = incomplete ? " (Incomplete)" : "", .Seconds = capture.LengthMs / 1000};
  TestLength(capture, verdict);
  TestSound(capture, verdict);
  TestLists(capture, verdict);
  TestDuplicates(capture, verdict);
  if (verdict.Keep) Keep(capture, verdict);
  if (!verdict.Keep) songFiles_.Discard(capture);
  loop_.PumpEvents();
  state_.Incomplete = false;
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
      ++state_.RecordedCount;
      journal_.DoLog(LogLine("Recorded: Channel ", capture, verdict, " " + fileSpecs_.FileFormatString()));
      break;
    case MovedSong::To::NameTaken:
      Reject(capture, verdict, kDuplicate);
      break;
    case MovedSong::To::OwnName:
      journal_.DoLog(LogLine("Not Renamed: Channel ", capture, verdict,
                             fmt::format(", kept as \"{}\": {}", moved.Path, moved.Cause)));
      break;
    case MovedSong::To::Nowhere:
      Reject(capture, verdict, ", " + moved.Cause);
      break;
  }
}

void Disposition::TestLength(const CaptureRecord& capture, Verdict& verdict) {
  if (verdict.Seconds < settings_.MinSongLength) {
    ++state_.TooShortCount;
    Reject(capture, verdict, ", Minimum length: " + FormatSeconds(settings_.MinSongLength));
  }
  // A capture can count in both tests, and the word is the same in both lines.
  if (verdict.Seconds > settings_.MaxSongLength && settings_.MaxSongLength > 0) {
    ++state_.TooLongCount;
    Reject(capture, verdict, ", Minimum length: " + FormatSeconds(settings_.MaxSongLength));
  }
}

void Disposition::TestSound(const CaptureRecord& capture, Verdict& verdict) {
  if (!verdict.Keep || capture.LengthMs > 0) return;
  const std::string& cause = capture.Outcome.Failure();
  Reject(capture, verdict, cause.empty() ? ", no sound came" : ", no sound was recorded: " + cause);
}

void Disposition::TestLists(const CaptureRecord& capture, Verdict& verdict) {
  // An event's captures are judged by its own modes, also after its end.
  const CaptureOutcome& outcome = capture.Outcome;
  const bool grab = outcome.Event != 0 ? outcome.Modes.Grab : modes_.CheckGrab();
  const bool kill = outcome.Event != 0 ? outcome.Modes.Kill : modes_.CheckKill();
  if (grab && verdict.Keep && !restrictions_.IsInGrabList(state_.LastArtist, state_.LastSong)) {
    ++state_.RestrictedCount;
    Reject(capture, verdict, ", not found in the grab list");
  }
  if (kill && verdict.Keep && restrictions_.IsInKillList(state_.LastArtist, state_.LastSong)) {
    ++state_.RestrictedCount;
    Reject(capture, verdict, ", found in the kill list");
  }
}

void Disposition::TestDuplicates(CaptureRecord& capture, Verdict& verdict) {
  if (!verdict.Keep) return;
  const auto taken = [&] { return songFiles_.Exists(PathOf(capture, verdict.Suffix)); };
  if (SavesDuplicate(capture)) {
    while (taken()) AdvanceName(capture.FileName);
  } else if (taken()) {
    Reject(capture, verdict, kDuplicate);
  }
}

bool Disposition::SavesDuplicate(const CaptureRecord& capture) const {
  return settings_.SaveDuplicates || capture.Piece;
}

void Disposition::Reject(const CaptureRecord& capture, Verdict& verdict, const std::string& why) {
  verdict.Keep = false;
  journal_.DoLog(LogLine("Not Recorded: Channel ", capture, verdict, why));
}

std::string Disposition::LogLine(std::string_view head, const CaptureRecord& capture, const Verdict& verdict,
                                 std::string_view tail) const {
  return fmt::format("{}{}  \"{} - {}{}\"  Song length: {}{}", head, radio_.ChannelNumber, capture.Artist,
                     capture.Song, verdict.Suffix, FormatSeconds(verdict.Seconds), tail);
}

}  // namespace kestrune::recorder
