#include "recorder/CaptureWatch.h"

#include <cstddef>

#include "recorder/SongName.h"

namespace kestrune::recorder {
namespace {

constexpr std::int64_t kMsPerMinute = 60000;

}  // namespace

CaptureWatch::CaptureWatch(State& state, SongBoundary& boundary, const base::EventLoop& loop,
                           base::Journal& journal)
    : state_(state), boundary_(boundary), loop_(loop), journal_(journal) {}

void CaptureWatch::Look() {
  if (!state_.Settings.Watch) {
    failing_ = false;
    state_.Watch.WriteFailure.clear();
    return;
  }
  const RecordingState& recording = state_.Recording;
  const CaptureRecord& capture = recording.CaptureSlots.at(static_cast<std::size_t>(recording.CaptureSlot));
  LookForFailure(capture);
  if (TooLongForNobody(capture)) boundary_.TakePiece();
}

void CaptureWatch::LookForFailure(const CaptureRecord& capture) {
  const std::chrono::milliseconds now = loop_.SteadyNow();
  if (!capture.Outcome.Failure().empty()) {
    if (!failing_) {
      failing_ = true;
      since_ = nextTry_ = now;
    }
    if (now < nextTry_) return;
    nextTry_ = now + kNextTry;
    boundary_.TakePiece();
  } else if (failing_ && capture.WrittenMs >= kProofMs) {
    failing_ = false;
    state_.Watch.WriteFailure.clear();
    journal_.DoLog("Writing goes on after " + FormatSeconds((now - since_).count() / 1000));
  }
}

bool CaptureWatch::TooLongForNobody(const CaptureRecord& capture) const {
  const RecordingState& recording = state_.Recording;
  const std::int64_t minutes = state_.Settings.IdleCaptureMinutes;
  return minutes > 0 && !recording.CaptureWanted() && !capture.KeepAtEnd &&
         capture.LengthMs >= minutes * kMsPerMinute;
}

}  // namespace kestrune::recorder
