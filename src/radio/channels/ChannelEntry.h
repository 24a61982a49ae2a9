#pragma once

#include <cstdint>
#include <string>

namespace kestrune::radio {

/// One channel of the radio and what plays on it; texts are UTF-8.
struct ChannelEntry {
  std::int16_t Number = 0;  ///< as the radio gives it; 0 in an empty slot
  std::string Station = {};
  std::string Genre = {};  ///< always empty for channel 1
  std::string Artist = {};
  std::string Song = {};
  bool Seen = false;  ///< a reply for it has come in this run
};

}  // namespace kestrune::radio
