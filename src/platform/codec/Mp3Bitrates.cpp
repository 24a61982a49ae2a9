#include "platform/codec/Mp3Bitrates.h"

#include <algorithm>
#include <cstdlib>
#include <span>

#include "platform/codec/MpegAudio.h"

namespace kestrune::platform {
namespace {

using Table = std::span<const std::int16_t>;

constexpr std::int16_t kConstant = -1;
constexpr std::int16_t kAverage = 4;

std::int16_t OwnChoice(std::int16_t channels) {
  return channels == 1 ? 64 : 128;
}

std::int16_t Nearest(Table table, std::int16_t bitrate) {
  return *std::ranges::min_element(table, [bitrate](int a, int b) {
    const int fromA = std::abs(a - bitrate);
    const int fromB = std::abs(b - bitrate);
    return fromA != fromB ? fromA < fromB : a > b;
  });
}

std::int16_t AtLeast(Table table, std::int16_t bitrate) {
  const auto found = std::ranges::lower_bound(table, bitrate);
  return found != table.end() ? *found : table.back();
}

std::int16_t AtMost(Table table, std::int16_t bitrate) {
  const auto after = std::ranges::upper_bound(table, bitrate);
  return after != table.begin() ? *(after - 1) : table.front();
}

}  // namespace

Mp3Parameters WithRealBitrates(Mp3Parameters parameters) {
  const auto rate = FindMpegRate(parameters.Frequency);
  if (!rate || parameters.VBRCodingMethod < kConstant || parameters.VBRCodingMethod > kAverage)
    return parameters;
  const Table table = MpegBitrates(rate->Version);
  const auto orOwnChoice = [&](std::int16_t bitrate) {
    return bitrate == 0 ? OwnChoice(parameters.Channels) : bitrate;
  };
  if (parameters.VBRCodingMethod == kConstant) {
    parameters.Bitrate = Nearest(table, orOwnChoice(parameters.Bitrate));
    return parameters;
  }

  std::int16_t least = table.front();
  if (parameters.VBREnforceMinBitRate) {
    least = AtLeast(table, parameters.Bitrate);
    parameters.Bitrate = least;
  }
  std::int16_t most = table.back();
  if (parameters.VBRMaxBitrate != 0) {
    most = std::max(least, AtMost(table, parameters.VBRMaxBitrate));
    parameters.VBRMaxBitrate = most;
  }
  if (parameters.VBRCodingMethod == kAverage) {
    parameters.VBRTargetBitrate = std::clamp(orOwnChoice(parameters.VBRTargetBitrate), least, most);
  }
  if (least == most) {
    // The encoder's average method even aborts the program when it has no choice and the sound needs more.
    parameters.VBRCodingMethod = kConstant;
    parameters.Bitrate = most;
  }
  return parameters;
}

}  // namespace kestrune::platform
