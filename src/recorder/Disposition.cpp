#include "recorder/Disposition.h"

#include <fmt/format.h>

#include "base/Ignored.h"
#include "recorder/Capture.h"
#include "recorder/SongName.h"

namespace kestrune::recorder {
namespace {

/// The next name to try for a song whose name is taken: a last digit from 1 to 8 goes up by one, everything
/// else gets a 1 behind it. So the copies of x are x1 to x9, then x91.
void AdvanceName(std::string& fileName) {
  if (!fileName.empty() && fileName.back() >= '1' && fileName.back() <= '8') {
    ++fileName.back();
  } else {
    fileName += '1';
  }
}

}  // namespace

Disposition::Disposition(State& state, const config::FileSpecs& fileSpecs,
                         const schedule::Restrictions& restrictions, platform::Files& files,
                         base::EventLoop& loop, base::Journal& journal)
    : state_(state.Recording),
      radio_(state.Radio),
      settings_(state.Settings),
      fileSpecs_(fileSpecs),
      modes_(state),
      restrictions_(restrictions),
      files_(files),
      loop_(loop),
      journal_(journal) {}

void Disposition::Dispose(std::int16_t finished) {
  CaptureRecord& capture = state_.CaptureSlots[static_cast<std::size_t>(finished)];
  const std::string temporary = capture.Folder + Capture::TemporaryName(finished, capture.Extension);
  const bool cutAtItsBeginning = state_.WaitingForNextSong && !state_.StopPending;
  if (cutAtItsBeginning) {
    base::Ignored(files_.Remove(temporary));
    state_.Incomplete = false;
    return;
  }

  Verdict verdict{
      .Keep = true, .Suffix = state_.Incomplete ? " (Incomplete)" : "", .Seconds = capture.LengthMs / 1000};
  TestLength(capture, verdict);
  TestLists(capture, verdict);
  TestDuplicates(capture, verdict);

  const std::string target = capture.FileName + verdict.Suffix + "." + capture.Extension;
  if (verdict.Keep) {
    ++state_.RecordedCount;
    journal_.DoLog(LogLine("Recorded: Channel ", capture, verdict, " " + fileSpecs_.FileFormatString()));
    base::Ignored(files_.RenameNoReplace(temporary, target));
  } else {
    base::Ignored(files_.Remove(temporary));
  }
  loop_.PumpEvents();
  state_.Incomplete = false;
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

void Disposition::TestLists(const CaptureRecord& capture, Verdict& verdict) {
  if (modes_.CheckGrab() && verdict.Keep && !restrictions_.IsInGrabList(state_.LastArtist, state_.LastSong)) {
    ++state_.RestrictedCount;
    Reject(capture, verdict, ", not found in the grab list");
  }
  if (modes_.CheckKill() && verdict.Keep && restrictions_.IsInKillList(state_.LastArtist, state_.LastSong)) {
    ++state_.RestrictedCount;
    Reject(capture, verdict, ", found in the kill list");
  }
}

void Disposition::TestDuplicates(CaptureRecord& capture, Verdict& verdict) {
  if (!verdict.Keep) return;
  const auto taken = [&] {
    return files_.Exists(capture.FileName + verdict.Suffix + "." + capture.Extension);
  };
  if (settings_.SaveDuplicates) {
    while (taken()) AdvanceName(capture.FileName);
  } else if (taken()) {
    Reject(capture, verdict, ", duplicate song in output directory");
  }
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
