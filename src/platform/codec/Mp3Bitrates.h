#pragma once

#include "platform/Mp3Parameters.h"

namespace kestrune::platform {

/// The parameters with the bitrates that are really written, since a sample rate has only some of them. No
/// bitrate is refused:
/// - A Bitrate or VBRTargetBitrate of 0 is the encoder's own choice: 128 kbit/s, or 64 for one channel.
/// - A constant bitrate becomes the nearest that the rate has; of two equally near, the higher one.
/// - Limits move inwards to the next bitrate of the table, or to the table's end if there is none. An
///   enforced minimum above the maximum raises the maximum. VBRMaxBitrate 0 stays: no limit.
/// - A target outside the limits moves to the nearer one.
/// - Limits that leave a single bitrate make it constant.
///
/// With a sample rate or a coding method that does not exist, the parameters come back unchanged.
[[nodiscard]] Mp3Parameters WithRealBitrates(Mp3Parameters parameters);

}  // namespace kestrune::platform
