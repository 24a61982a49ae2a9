#include "recorder/SongBoundary.h"

#include <utility>

#include <fmt/format.h>

#include "base/Text.h"
#include "cut/Cut.h"
#include "recorder/SongName.h"

namespace kestrune::recorder {
namespace {

// Shorter pieces are what a full disk took of the tries to write again.
constexpr std::int64_t kShortestPieceMs = 2000;

// If the sound stops coming, a choice waits no longer for it, and its cut not for the rest of the file.
constexpr std::chrono::milliseconds kLongestListening{cut::kWantedAfterMs + 5000};
constexpr std::chrono::milliseconds kLongestWriting{cut::kWantedAfterMs + 10000};

// Below this the files may overlap.
constexpr float kSureCut = 0.5F;

std::string TraceLine(const platform::HistoryCut& cut) {
  std::string line =
      fmt::format("#Cut {} lag {} {} {:.2f}:", cut.Frame, cut.LagMs, cut.Reason, cut.Confidence);
  for (const platform::CutCandidate& place : cut.Candidates)
    line += fmt::format(" {} {:.2f}", place.LagMs, place.Chance);
  return line;
}

}  // namespace

SongBoundary::SongBoundary(State& state, const Parts& parts, SongFiles& songFiles, base::EventLoop& loop)
    : all_(state),
      state_(state.Recording),
      settings_(state.Settings),
      channels_(parts.Channels),
      radio_(state.Radio),
      capture_(parts.Capture),
      cuts_(parts.Cuts),
      disposition_(parts.Disposition),
      announcer_(parts.Announcer),
      chronicle_(parts.Chronicle),
      shelving_(parts.Shelving),
      journal_(parts.Journal),
      songFiles_(songFiles),
      loop_(loop) {}

void SongBoundary::Take(bool split) {
  const bool natural = split && !state_.StartPending && !state_.StopPending && !state_.SkipSongDelay;
  const bool whole = natural && state_.SongBoundarySeen;
  if (natural && Listens() && TakeByListening()) return;
  SettleCuts();
  if (natural) AwaitSound();
  state_.SkipSongDelay = false;

  const std::int16_t finished = state_.CaptureSlot;
  const auto next = static_cast<std::int16_t>(1 - finished);
  NameNextSong(state_.CaptureSlots[static_cast<std::size_t>(next)]);

  // A start that waits for no boundary keeps the capture in hand: its beginning is what the user wants. A stop
  // that came with it ends that capture.
  const bool goesOn = state_.StartPending && !state_.StopPending;
  const bool cut = !goesOn || state_.ForceSongChange;
  if (cut) {
    std::int32_t result = 0;
    capture_.RecordStop(finished);
    capture_.RecordStart(next, capture_.TemporaryFile(next), result);
  }
  if (state_.StopPending || state_.StartPending) {
    state_.SongBoundarySeen = false;
    state_.Incomplete = true;
  }
  if (cut) state_.CaptureSlot = next;
  state_.ForceSongChange = false;
  channels_.CopyRadioText();

  const bool wanted = state_.RecordRequested || state_.StopPending;
  const bool armed = state_.RecordArmed || state_.StopPending;
  if (!wanted || !armed) {
    DisposeUnwanted(state_.CaptureSlots[static_cast<std::size_t>(finished)], whole);
  } else {
    loop_.PumpEvents();
    if (!state_.StopPending) ShowRecording();
    if (!goesOn) {
      CaptureRecord& song = state_.CaptureSlots[static_cast<std::size_t>(finished)];
      song.FileName = MakePlace(song).FileName;
      song.Ending = EndingNow(all_);
      song.Ending.Whole = whole;
      disposition_.Dispose(song);
      state_.Incomplete = false;
    }
    // What a forced cut ended before the start was asked for by nobody.
    if (goesOn && cut) DisposeUnwanted(state_.CaptureSlots[static_cast<std::size_t>(finished)], whole);
    state_.WaitingForNextSong = state_.StartPending = state_.StopPending = false;
  }
  if (cut) capture_.Release(finished);
  FollowCurrentSong();
  announcer_.ShowSong(Tuned());
}

bool SongBoundary::Listens() const {
  return settings_.CutPlacement == config::CutPlacement::Listen && cuts_.Hears();
}

bool SongBoundary::TakeByListening() {
  if (state_.AwaitedCuts.size() >= kMostAwaited) SettleFirstCut();
  const std::int16_t finished = state_.CaptureSlot;
  const auto next = static_cast<std::int16_t>(1 - finished);
  const bool wanted = state_.RecordRequested && state_.RecordArmed;
  CaptureEnding& ending = state_.CaptureSlots[static_cast<std::size_t>(finished)].Ending;
  ending = EndingNow(all_);
  ending.Whole = state_.SongBoundarySeen;
  AwaitedCut cut{.Channel = radio_.ChannelNumber,
                 .Stamp = cuts_.StampOf(radio_.CurrentArtist, radio_.CurrentSong, capture_.FrameNow()),
                 .Since = loop_.SteadyNow(),
                 .Wanted = wanted};
  if (!capture_.AwaitCut(next, std::move(cut))) return false;

  NameNextSong(state_.CaptureSlots[static_cast<std::size_t>(next)]);
  state_.SongBoundarySeen = true;
  state_.SongBoundaryTime = loop_.Now();
  state_.ForceSongChange = false;
  channels_.CopyRadioText();
  if (wanted) {
    loop_.PumpEvents();
    ShowRecording();
    state_.WaitingForNextSong = state_.Incomplete = false;
  }
  FollowCurrentSong();
  announcer_.ShowSong(Tuned());
  return true;
}

void SongBoundary::FollowCuts() {
  if (state_.AwaitedCuts.empty()) return;
  if (settings_.CutPlacement != config::CutPlacement::Listen) return SettleCuts();
  const AwaitedCut& first = state_.AwaitedCuts.front();
  if (!first.Song.Outcome.Failure().empty()) return SettleFirstCut();
  const std::chrono::milliseconds waited = loop_.SteadyNow() - first.Since;
  if (capture_.MsSince(first.Stamp) >= cut::kWantedAfterMs || waited > kLongestListening) Choose(0);
  if (!first.Frame) return;
  if (capture_.CutReached() || waited > kLongestWriting) SettleFirstCut();
}

void SongBoundary::ChooseCuts() {
  for (std::size_t i = 0; i < state_.AwaitedCuts.size(); ++i) Choose(i);
}

void SongBoundary::Choose(std::size_t index) {
  AwaitedCut& awaited = state_.AwaitedCuts.at(index);
  if (awaited.Frame) return;
  const cut::Cut cut = cuts_.Choose(awaited.Stamp, awaited.Channel);
  const bool last = index + 1 == state_.AwaitedCuts.size();
  const CaptureRecord& next = last ? state_.CaptureSlots[static_cast<std::size_t>(state_.CaptureSlot)]
                                   : state_.AwaitedCuts.at(index + 1).Song;
  platform::HistoryCut kept{.Frame = cut.Frame,
                            .LagMs = static_cast<std::int32_t>(cut.LagMs),
                            .Reason = std::string(cut::NameOf(cut.Reason)),
                            .Confidence = cut.Confidence,
                            .Candidates = {},
                            .Next = next.Artist + " - " + next.Song};
  for (const cut::Candidate& candidate : cut.Candidates)
    kept.Candidates.push_back({.LagMs = candidate.LagMs, .Chance = candidate.Chance});
  if (journal_.Tracing()) journal_.Trace(TraceLine(kept));
  awaited.Song.Outcome.Cut = std::move(kept);
  awaited.Frame = cut.Frame;
  awaited.OverlapMs = cut.Confidence < kSureCut ? settings_.CutOverlap : 0;
  if (index == 0) capture_.SetCut();
}

void SongBoundary::SettleCuts() {
  while (!state_.AwaitedCuts.empty()) SettleFirstCut();
}

void SongBoundary::SettleFirstCut() {
  Choose(0);
  const bool busy = std::exchange(state_.BoundaryBusy, true);
  AwaitedCut ended = capture_.CutOver();
  // What has ended last lies beside the song in hand.
  CaptureRecord& song = state_.CaptureSlots[static_cast<std::size_t>(1 - state_.CaptureSlot)];
  song = std::move(ended.Song);
  if (ended.Wanted) {
    song.FileName = MakePlace(song).FileName;
    disposition_.Dispose(song);
  } else {
    DisposeUnwanted(song, song.Ending.Whole);
  }
  capture_.Release(ended.Slot);
  state_.BoundaryBusy = busy;
}

void SongBoundary::TakePiece() {
  SettleCuts();
  const std::int16_t finished = state_.CaptureSlot;
  const auto next = static_cast<std::int16_t>(1 - finished);
  CaptureRecord& piece = state_.CaptureSlots[static_cast<std::size_t>(finished)];
  CaptureRecord& rest = state_.CaptureSlots[static_cast<std::size_t>(next)];
  const bool wanted = state_.CaptureWanted();
  const bool asked = wanted || piece.KeepAtEnd;
  const bool worthKeeping = asked && piece.LengthMs >= kShortestPieceMs;
  state_.BoundaryBusy = true;

  rest = piece;
  rest.Extension = base::ToLower(settings_.FileFormat);
  rest.Piece = piece.Piece || worthKeeping;
  const SongName name = MakePlace(rest);
  rest.FileName = name.FileName;
  rest.Folder = name.Folder;
  std::int32_t result = 0;
  capture_.StopPiece(finished);
  capture_.RecordStart(next, capture_.TemporaryFile(next), result);
  state_.CaptureSlot = next;
  state_.SongBoundarySeen = false;

  if (worthKeeping && wanted) {
    state_.Incomplete = true;
    piece.FileName = MakePlace(piece).FileName;
    piece.Ending = EndingNow(all_);
    disposition_.Dispose(piece);
  } else if (asked && !worthKeeping) {
    if (piece.LengthMs > 0) chronicle_.SongEnded(piece, platform::SongFate::Failed, piece.Outcome.Failure());
    songFiles_.Discard(piece);
  } else {
    DisposeUnwanted(piece, false);
  }
  capture_.Release(finished);
  state_.Incomplete = wanted;
  state_.BoundaryBusy = false;
}

void SongBoundary::DisposeUnwanted(CaptureRecord& capture, bool whole) {
  capture.Ending = EndingNow(all_);
  capture.Ending.Whole = whole;
  // The radio may be on another channel already.
  capture.Ending.Channel = capture.Naming.Values.Channel;
  if (capture.KeepAtEnd) capture.FileName = MakePlace(capture).FileName;
  disposition_.DisposeUnwanted(capture);
}

void SongBoundary::TakeLast() {
  CaptureRecord& capture = state_.CaptureSlots[static_cast<std::size_t>(state_.CaptureSlot)];
  if (capture.Outcome.File.empty() || capture.LengthMs == 0) return;
  if (capture.KeepAtEnd) return DisposeUnwanted(capture, false);
  shelving_.Take(capture, platform::SongFate::NotWanted, true);
  // Of an event it is missing.
  if (!capture.Outcome.ShelfName.empty() && capture.Outcome.Event == 0)
    chronicle_.SongEnded(capture, platform::SongFate::NotWanted, "");
}

void SongBoundary::AwaitSound() {
  // The text runs ahead of the sound. The thread blocks, so that nothing moves the boundary meanwhile; the
  // capture runs on, and what it brings belongs to the old song.
  loop_.Sleep(std::chrono::milliseconds(settings_.SongDelay));
  state_.SongBoundarySeen = true;
  state_.SongBoundaryTime = loop_.Now();
}

void SongBoundary::NameNextSong(CaptureRecord& next) {
  const radio::ChannelEntry& tuned = Tuned();
  next.Extension = base::ToLower(settings_.FileFormat);
  next.Naming = {.FilenameFormat = settings_.FilenameFormat,
                 .FileDir = settings_.FileDir,
                 .Values = {.Artist = radio_.CurrentArtist,
                            .Song = radio_.CurrentSong,
                            .Channel = radio_.ChannelNumber,
                            .Station = tuned.Station,
                            .Genre = tuned.Genre,
                            .SessionStart = state_.SessionStart,
                            .Recorded = state_.RecordedCount}};
  const SongName name = MakePlace(next);
  next.FileName = name.FileName;
  next.Folder = name.Folder;
  next.Song = radio_.CurrentSong;
  next.Artist = radio_.CurrentArtist;
  next.Genre = base::Trim(tuned.Genre);
  next.Piece = false;
  next.KeepAtEnd = false;
}

SongName SongBoundary::MakePlace(const CaptureRecord& capture) {
  const SongNaming& naming = capture.Naming;
  SongName name = BuildSongName(naming.FilenameFormat, naming.FileDir, capture.Extension, naming.Values);
  songFiles_.MakeFolder(name.Folder);
  return name;
}

void SongBoundary::ShowRecording() {
  state_.Phase = Phase::Recording;
  announcer_.ShowTrayTip();
  state_.RecordStartTime = loop_.Now();
}

void SongBoundary::FollowCurrentSong() {
  const radio::ChannelEntry& tuned = Tuned();
  state_.LastArtist = radio_.CurrentArtist;
  state_.LastSong = radio_.CurrentSong;
  state_.LastGenre = tuned.Genre;
  state_.LastStation = tuned.Station;
  state_.LastChannel = radio_.ChannelNumber;
}

const radio::ChannelEntry& SongBoundary::Tuned() const {
  return channels_.TunedEntry();
}

}  // namespace kestrune::recorder
