#pragma once

#include <cstdint>
#include <vector>

namespace kestrune::platform {

/// Counts what became of numbered frames (1, 2, 3 ...) among silence (0).
struct FrameLedger {
  std::uint32_t First = 0;
  std::uint32_t Last = 0;
  std::uint64_t Heard = 0;
  std::uint64_t Lost = 0;     ///< numbers left out
  std::uint64_t Doubled = 0;  ///< numbers that came again, or too late
  std::uint64_t Silent = 0;   ///< silence between the first and the last number
  std::uint64_t Gaps = 0;     ///< places where numbers were left out

  void Add(const std::vector<std::uint32_t>& frames) {
    for (const std::uint32_t frame : frames) {
      if (frame == 0) {
        if (Last != 0) ++waiting_;
        continue;
      }
      Silent += waiting_;
      waiting_ = 0;
      ++Heard;
      if (First == 0) {
        First = frame;
      } else if (frame > Last + 1) {
        Lost += frame - Last - 1;
        ++Gaps;
      } else if (frame <= Last) {
        ++Doubled;
      }
      Last = frame;
    }
  }

 private:
  std::uint64_t waiting_ = 0;
};

}  // namespace kestrune::platform
