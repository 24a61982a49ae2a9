#include "RadioTraffic.h"

#include <array>
#include <string_view>

#include "support/Bytes.h"
#include "support/RadioFrames.h"

namespace kestrune::test {
namespace {

constexpr std::array<std::string_view, 12> kOtherReplies{
    "5A A5 00 1B 80 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 52 30 47 48 4A 4B 32 33 ED ED",
    "5A A5 00 02 81 00 ED ED",
    "5A A5 00 06 90 01 00 2D 00 00 ED ED",
    "5A A5 00 06 90 02 00 00 00 00 ED ED",
    "5A A5 00 04 93 01 00 31 ED ED",
    "5A A5 00 04 93 01 00 30 ED ED",
    "5A A5 00 0C B1 01 00 00 52 30 47 48 4A 4B 32 33 ED ED",
    "5A A5 00 1A C3 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 AA 00 00 00 00 00 00 36 46 00 ED ED",
    "5A A5 80 01 E3 ED ED",
    "5A A5 00 02 F2 00 ED ED",
    "5A A5 00 02 FF 00 ED ED",
    "5A A5 00 00 ED ED",
};

}  // namespace

std::size_t RadioTraffic::Roll(std::size_t most) {
  // No distribution of the library: those may differ between its versions, and with them what a seed means.
  return static_cast<std::size_t>(dice_() % (most + 1));
}

std::string RadioTraffic::Noise() {
  std::string noise(1 + Roll(200), '\0');
  for (char& byte : noise) byte = Byte();
  return noise;
}

std::string RadioTraffic::Field() {
  std::string text(Roll(16), ' ');
  const bool plain = Roll(3) > 0;
  for (char& letter : text) letter = plain ? static_cast<char>('A' + Roll(57)) : Byte();
  return text;
}

std::string RadioTraffic::Reply() {
  if (Roll(3) > 0) {
    const auto channel = static_cast<std::uint8_t>(Roll(255));
    const std::string station = Field();
    const std::string genre = Field();
    const std::string artist = Field();
    return ChannelInfoFrame(channel, station, genre, artist, Field());
  }
  std::string reply = Bytes(kOtherReplies.at(Roll(kOtherReplies.size() - 1)));
  // The one after the type says what became of the command, the third is often a channel.
  if (Roll(1) == 0 && reply.size() > 8) reply[Roll(1) == 0 ? 5 : 7] = Byte();
  return reply;
}

void RadioTraffic::Spoil(std::string& frame) {
  const std::size_t at = Roll(frame.size() - 1);
  switch (Roll(6)) {
    case 0:
      frame[at] = Byte();
      break;
    case 1:
      frame.erase(at);  // the rest is lost
      break;
    case 2:
      frame.erase(at, 1 + Roll(7));
      break;
    case 3:
      frame.insert(at, Noise());
      break;
    case 4:
      frame[Roll(50) == 0 ? 2 : 3] = Byte();  // a length of up to 64 KB, which swallows all up to its end
      break;
    case 5:
      // A whole header has most often a long frame behind it too.
      frame.insert(at, Roll(50) == 0 ? "\x5A\xA5" : "\x5A");
      break;
    default:
      frame.erase(0, at);  // its beginning is lost
  }
}

std::string RadioTraffic::Next() {
  const std::size_t kind = Roll(9);
  if (kind == 0) return Noise();
  std::string frame = Reply();
  if (kind <= 3) Spoil(frame);
  return frame;
}

}  // namespace kestrune::test
