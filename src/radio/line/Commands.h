#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>

namespace kestrune::radio {

/// Every command that goes to the radio, as the hex text that `pcrHexToBinary` turns into bytes. The last two
/// bytes are written out: either the filler "ED ED", or 01 and a sum, which docs/serial-protocol.md explains.
namespace command {

inline constexpr std::string_view kPowerOn = "5A A5 00 05 00 10 10 10 01 ED ED";
inline constexpr std::string_view kPowerOff = "5A A5 00 02 01 00 ED ED";
inline constexpr std::string_view kMuteOn = "5A A5 00 02 13 01 ED ED";
inline constexpr std::string_view kMuteOff = "5A A5 00 02 13 00 ED ED";
inline constexpr std::string_view kFirstChannelInfo = "5A A5 00 04 25 09 00 00 ED ED";
inline constexpr std::string_view kRadioID = "5A A5 00 01 31 ED ED";
inline constexpr std::string_view kSignalLevels = "5A A5 00 01 43 ED ED";

/// The setup steps around power on; the first is also the answer to a radio that asks for setup again.
inline constexpr std::string_view kSetup = "5A A5 00 03 74 00 01 01 77";
inline constexpr std::string_view kSetupBeforePowerOn = "5A A5 00 02 74 0D 01 82";
inline constexpr std::string_view kSetupAfterPowerOn1 = "5A A5 00 04 74 02 01 01 01 7B";
inline constexpr std::string_view kSetupAfterPowerOn2 = "5A A5 00 04 74 04 01 05 01 81";
inline constexpr std::string_view kSetupAfterPowerOn3 = "5A A5 00 03 74 0B 01 01 82";
inline constexpr std::string_view kSetupDone = "5A A5 00 01 40 01 40";

/// A step of the power-on sequence, and the pause that follows it.
struct Step {
  std::string_view Frame;
  std::chrono::milliseconds Pause;
};
/// What goes before kPowerOn, and what follows once its reply has come.
inline constexpr std::array<Step, 2> kBeforePowerOn{{
    {kSetup, std::chrono::milliseconds(200)},
    {kSetupBeforePowerOn, std::chrono::milliseconds(200)},
}};
inline constexpr std::array<Step, 4> kAfterPowerOn{{
    {kSetupAfterPowerOn1, std::chrono::milliseconds(100)},
    {kSetupAfterPowerOn2, std::chrono::milliseconds(100)},
    {kSetupAfterPowerOn3, std::chrono::milliseconds(100)},
    {kSetupDone, std::chrono::milliseconds(100)},
}};

/// Two upper-case hex digits of a channel; of a number above 255 the last two.
[[nodiscard]] std::string ChannelByte(std::int16_t channel);

/// The tail "01 19" goes out for every channel, though the sum in it is that of channel 1: the radio takes
/// it.
[[nodiscard]] std::string SelectChannel(std::int16_t channel);
[[nodiscard]] std::string ChannelInfo(std::int16_t channel);
/// Channel info of the channel that follows the given one in the radio's list.
[[nodiscard]] std::string NextChannelInfo(std::int16_t channel);

}  // namespace command

}  // namespace kestrune::radio
