#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <span>
#include <vector>

namespace kestrune::recorder {

/// Sound that has come from the input and may still be wanted: whole frames in the order in which they came, each with
/// a number. For the main thread.
class HeldSound {
 public:
  /// Forgets everything; the next frame is number `next`. `channels` is 1 or 2.
  void Reset(int channels, std::int64_t next);

  /// Takes interleaved samples, whole frames.
  void Append(std::span<const std::int16_t> block);

  /// Forgets the frames before that number, but for those that lie in one block with later ones.
  void DropBefore(std::int64_t frame);

  /// The number of the first frame that is still there, and of the frame after the last.
  [[nodiscard]] std::int64_t First() const { return first_; }
  [[nodiscard]] std::int64_t End() const { return end_; }
  [[nodiscard]] bool Empty() const { return first_ == end_; }

  /// Hands frames `from` to `to` - 1 over, in order and in pieces, until one is not taken; what is not there is left out.
  /// Returns the frame after the last that was taken: `to`, if all were.
  [[nodiscard]] std::int64_t Visit(std::int64_t from, std::int64_t to,
                                   const std::function<bool(std::span<const std::int16_t>)>& take) const;

 private:
  [[nodiscard]] std::int64_t Frames(const std::vector<std::int16_t>& block) const {
    return static_cast<std::int64_t>(block.size()) / channels_;
  }

  int channels_ = 2;
  std::int64_t first_ = 0;
  std::int64_t end_ = 0;
  std::deque<std::vector<std::int16_t>> blocks_;
};

}  // namespace kestrune::recorder
