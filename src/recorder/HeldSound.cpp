#include "recorder/HeldSound.h"

#include <algorithm>

namespace kestrune::recorder {

void HeldSound::Reset(int channels, std::int64_t next) {
  channels_ = channels;
  first_ = end_ = next;
  blocks_.clear();
}

void HeldSound::Append(std::span<const std::int16_t> block) {
  if (block.empty()) return;
  blocks_.emplace_back(block.begin(), block.end());
  end_ += Frames(blocks_.back());
}

void HeldSound::DropBefore(std::int64_t frame) {
  while (!blocks_.empty() && first_ + Frames(blocks_.front()) <= frame) {
    first_ += Frames(blocks_.front());
    blocks_.pop_front();
  }
}

std::int64_t HeldSound::Visit(std::int64_t from, std::int64_t to,
                              const std::function<bool(std::span<const std::int16_t>)>& take) const {
  std::int64_t at = first_;
  for (const std::vector<std::int16_t>& block : blocks_) {
    const std::int64_t end = at + Frames(block);
    const std::int64_t begin = std::max(from, at);
    const std::int64_t stop = std::min(to, end);
    const bool taken =
        begin >= stop || take(std::span(block).subspan(static_cast<std::size_t>((begin - at) * channels_),
                                                       static_cast<std::size_t>((stop - begin) * channels_)));
    if (!taken) return begin;
    at = end;
  }
  return to;
}

}  // namespace kestrune::recorder
