#include "receiver/CommandRules.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include <fmt/format.h>

namespace kestrune::receiver {
namespace {

constexpr std::uint8_t kSelect = 0x10;
constexpr std::uint8_t kFirstChannel = 1;
constexpr std::string_view kFiller = "\xED\xED";

/// The bytes of a known payload, the type first; nullopt stands for any channel.
using Bytes = std::vector<std::optional<std::uint8_t>>;

const std::vector<Bytes>& KnownPayloads() {
  constexpr std::nullopt_t kChannel = std::nullopt;
  static const std::vector<Bytes> kKnown = {
      {0x00, 0x10, 0x10, 0x10, 0x01},               // power on
      {0x01, 0x00},                                 // power off
      {kSelect, 0x02, kChannel, 0x00, 0x00, 0x01},  //
      {0x13, 0x00},                                 // unmute
      {0x13, 0x01},                                 // mute
      {0x25, 0x08, kChannel, 0x00},                 // channel info
      {0x25, 0x09, kChannel, 0x00},                 // of the next channel
      {0x31},                                       // identifier
      {0x40},                                       // end of the power-on sequence
      {0x43},                                       // signal levels
      {0x74, 0x00, 0x01},                           // the setup steps
      {0x74, 0x0D},                                 //
      {0x74, 0x02, 0x01, 0x01},                     //
      {0x74, 0x04, 0x01, 0x05},                     //
      {0x74, 0x0B, 0x01},                           //
  };
  return kKnown;
}

std::uint8_t ByteAt(std::string_view bytes, std::size_t i) {
  return i < bytes.size() ? static_cast<std::uint8_t>(bytes[i]) : 0;
}

/// How many bytes are right, counted from the first one.
std::size_t RightBytes(const Bytes& known, std::string_view payload) {
  std::size_t count = 0;
  while (count < known.size() && count < payload.size() &&
         (!known[count] || *known[count] == ByteAt(payload, count))) {
    ++count;
  }
  return count;
}

std::uint8_t SumOf(std::string_view payload) {
  std::size_t sum = payload.size() - 1;
  for (const char byte : payload) sum += static_cast<std::uint8_t>(byte);
  return static_cast<std::uint8_t>(sum);
}

}  // namespace

std::string FaultOfPayload(std::string_view payload) {
  std::size_t right = 0;
  for (const Bytes& known : KnownPayloads()) {
    const std::size_t count = RightBytes(known, payload);
    if (count == known.size() && count == payload.size()) return {};
    right = std::max(right, count);
  }
  if (right == 0) return fmt::format("there is no command of type {:02X}", ByteAt(payload, 0));
  if (right == payload.size()) return fmt::format("the command ends after byte {}", right);
  return fmt::format("byte {} is {:02X}", right + 1, ByteAt(payload, right));
}

std::string FaultOfTrailer(const Command& command) {
  if (command.Trailer == kFiller) return {};
  std::string summed = command.Payload;
  if (ByteAt(summed, 0) == kSelect && summed.size() > 2) summed[2] = static_cast<char>(kFirstChannel);
  const std::string sum{'\x01', static_cast<char>(SumOf(summed))};
  if (command.Trailer == sum) return {};
  return fmt::format("the trailer is {}, and neither ED ED nor {}", HexOf(command.Trailer), HexOf(sum));
}

std::string HexOf(std::string_view bytes) {
  std::string text;
  for (const char byte : bytes) {
    text += fmt::format("{}{:02X}", text.empty() ? "" : " ", static_cast<std::uint8_t>(byte));
  }
  return text;
}

}  // namespace kestrune::receiver
