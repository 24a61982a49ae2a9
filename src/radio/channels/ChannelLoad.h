#pragma once

#include <cstdint>

namespace kestrune::radio {

/// How far the walk through the radio's channels has come. It passes through them twice: the first pass finds them, the
/// second one checks them.
struct ChannelLoad {
  bool Checking = false;      ///< the second pass
  std::int16_t Done = 0;      ///< channels of this pass
  std::int16_t Expected = 0;  ///< channels that a pass has, no fewer than Done; 0: that is not known
};

}  // namespace kestrune::radio
