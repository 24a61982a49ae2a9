#include "presenters/CutOffer.h"

#include <algorithm>
#include <string>
#include <utility>

#include "base/Ignored.h"
#include "base/Numbers.h"

namespace kestrune::presenters {
namespace {

constexpr std::string_view kKey = "CutOffer";

int Ended(const recorder::RecordingState& recording) {
  return recording.RecordedCount + recording.TooShortCount + recording.TooLongCount +
         recording.RestrictedCount;
}

/// A new recording begins to count anew.
int Grown(int count, int before) {
  return count >= before ? count - before : count;
}

}  // namespace

void CutOffer::Follow() {
  if (kept_ >= kSongs && !shown_) return;
  const recorder::RecordingState& recording = state_.Recording;
  const int ended = Grown(Ended(recording), std::exchange(ended_, Ended(recording)));
  const int recorded = Grown(recording.RecordedCount, std::exchange(recorded_, recording.RecordedCount));
  if (kept_ < 0) kept_ = std::clamp<int>(base::ToInt16(section_.Text(kKey, "0")).value_or(0), 0, kSongs);
  if (shown_) {
    shown_ = ended == 0 && state_.Settings.CutPlacement == config::CutPlacement::Text;
  } else if (kept_ < kSongs && state_.Settings.CutPlacement == config::CutPlacement::Listen) {
    Note(kSongs);
  } else if (kept_ < kSongs && recorded > 0) {
    Note(std::min(kept_ + recorded, kSongs));
    shown_ = kept_ == kSongs;
  }
}

void CutOffer::Note(int songs) {
  kept_ = songs;
  base::Ignored(section_.SaveText(kKey, std::to_string(songs)));
}

}  // namespace kestrune::presenters
