#include "radio/line/Commands.h"

#include <fmt/format.h>

namespace kestrune::radio::command {

std::string ChannelByte(std::int16_t channel) {
  return fmt::format("{:02X}", static_cast<std::uint16_t>(channel) & 0xFFU);
}

std::string SelectChannel(std::int16_t channel) {
  return "5A A5 00 06 10 02 " + ChannelByte(channel) + " 00 00 01 01 19";
}

std::string ChannelInfo(std::int16_t channel) {
  return "5A A5 00 04 25 08 " + ChannelByte(channel) + " 00 ED ED";
}

std::string NextChannelInfo(std::int16_t channel) {
  return "5A A5 00 04 25 09 " + ChannelByte(channel) + " 00 ED ED";
}

}  // namespace kestrune::radio::command
