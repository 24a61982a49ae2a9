#pragma once

#include <cstdint>

#include "real/Decoded.h"

namespace kestrune::test {

/// Where a piece of recorded sound lies in what the receiver has played with the signal "music", whose lowest bits number
/// the frames.
struct MarkedSound {
  bool Found = false;        ///< whether there are any marks
  std::int64_t First = 0;    ///< the receiver's number of the first frame
  std::int64_t End = 0;      ///< that of the frame after the last
  std::int64_t Lost = 0;     ///< frames that are missing in between
  std::int64_t Doubled = 0;  ///< frames that come a second time
  std::int64_t Silent = 0;   ///< frames that were never played, between two that follow one another
};

[[nodiscard]] MarkedSound ReadFrameMarks(const Decoded& sound);

}  // namespace kestrune::test
