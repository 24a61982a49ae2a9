#include "recorder/HeldBack.h"

#include <algorithm>

#include "base/Ignored.h"
#include "config/settings/Settings.h"

namespace kestrune::recorder {
namespace {

// As much of what is overdue is written with a block that comes: after a choice, five seconds are made up in two.
constexpr std::int64_t kBlocksAtOnce = 4;

}  // namespace

void HeldBack::Begin(const platform::PcmFormat& format) {
  if (written_ == end_ || format_ != format) {
    sound_.Reset(format.Channels, end_);
    written_ = end_;
  }
  format_ = format;
  start_ = written_;
  limit_.reset();
  cut_.reset();
  overlap_ = 0;
}

void HeldBack::Take(std::span<const std::int16_t> block, bool held, const File& file) {
  const std::int64_t frames = static_cast<std::int64_t>(block.size()) / format_.Channels;
  if (!held && written_ == end_) {
    sound_.Reset(format_.Channels, end_ + frames);
    written_ = end_ = end_ + frames;
    return base::Ignored(file(block));
  }
  sound_.Append(block);
  end_ += frames;
  std::int64_t due = Due(held);
  if (held) due = std::min(due, written_ + kBlocksAtOnce * frames);
  WriteUpTo(due, file);
  if (written_ < due) LetGo();
}

std::int64_t HeldBack::Due(bool held) const {
  const std::int64_t due = held ? end_ - std::int64_t{kSeconds} * format_.SampleRate : end_;
  if (cut_) return FileEnd();
  return limit_ ? std::min(due, *limit_) : due;
}

void HeldBack::Flush(const File& file) {
  WriteUpTo(end_, file);
}

void HeldBack::WriteUpTo(std::int64_t frame, const File& file) {
  frame = std::min(frame, end_);
  if (frame <= written_) return;
  written_ = sound_.Visit(written_, frame, file);
  // A cut may be chosen where the file ends now, and the next file may begin an overlap before the end of this one.
  sound_.DropBefore(written_ - std::int64_t{format_.SampleRate} * config::kLongestCutOverlap / 1000);
}

void HeldBack::LetGo() {
  const std::int64_t oldest = end_ - std::int64_t{kMostSeconds} * format_.SampleRate;
  if (written_ >= oldest) return;
  if (start_ == written_) start_ = oldest;
  written_ = oldest;
  sound_.DropBefore(written_);
}

void HeldBack::AwaitCut(std::int64_t earliest) {
  limit_ = earliest;
  cut_.reset();
}

void HeldBack::SetCut(std::int64_t frame, std::int64_t overlap) {
  cut_ = std::clamp(frame, std::min(written_, end_), end_);
  // Both files have it, so it has to be there.
  const std::int64_t room = 2 * std::min({*cut_ - sound_.First(), *cut_ - start_, end_ - *cut_});
  overlap_ = std::clamp<std::int64_t>(overlap, 0, std::max<std::int64_t>(room, 0));
}

void HeldBack::Cut(const File& file) {
  WriteUpTo(FileEnd(), file);
  start_ = written_ = *cut_ - overlap_ / 2;
  limit_.reset();
  cut_.reset();
  overlap_ = 0;
}

}  // namespace kestrune::recorder
