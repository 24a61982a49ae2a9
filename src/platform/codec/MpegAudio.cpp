#include "platform/codec/MpegAudio.h"

#include <algorithm>
#include <array>

namespace kestrune::platform {
namespace {

struct RateRow {
  std::int32_t Hertz;
  MpegRate Rate;
};

constexpr std::array<RateRow, 9> kRates{{
    {44100, {MpegVersion::Mpeg1, 0}},
    {48000, {MpegVersion::Mpeg1, 1}},
    {32000, {MpegVersion::Mpeg1, 2}},
    {22050, {MpegVersion::Mpeg2, 0}},
    {24000, {MpegVersion::Mpeg2, 1}},
    {16000, {MpegVersion::Mpeg2, 2}},
    {11025, {MpegVersion::Mpeg25, 0}},
    {12000, {MpegVersion::Mpeg25, 1}},
    {8000, {MpegVersion::Mpeg25, 2}},
}};

constexpr std::array<std::int16_t, 14> kMpeg1Bitrates{32,  40,  48,  56,  64,  80,  96,
                                                      112, 128, 160, 192, 224, 256, 320};
constexpr std::array<std::int16_t, 14> kMpeg2Bitrates{8,  16, 24, 32,  40,  48,  56,
                                                      64, 80, 96, 112, 128, 144, 160};
constexpr std::size_t kMpeg25Count = 8;

}  // namespace

std::optional<MpegRate> FindMpegRate(std::int32_t hertz) {
  for (const RateRow& row : kRates) {
    if (row.Hertz == hertz) return row.Rate;
  }
  return std::nullopt;
}

std::optional<std::int32_t> HertzOf(const MpegRate& rate) {
  for (const RateRow& row : kRates) {
    if (row.Rate.Version == rate.Version && row.Rate.Index == rate.Index) return row.Hertz;
  }
  return std::nullopt;
}

std::span<const std::int16_t> MpegBitrates(MpegVersion version) {
  switch (version) {
    case MpegVersion::Mpeg1:
      return kMpeg1Bitrates;
    case MpegVersion::Mpeg2:
      return kMpeg2Bitrates;
    default:
      return std::span(kMpeg2Bitrates).first(kMpeg25Count);
  }
}

std::size_t MpegFrameWalker::Take(std::span<const std::byte> bytes) {
  std::size_t count = 0;
  while (count < bytes.size() && taken_ < static_cast<std::int64_t>(kHeaderBytes)) {
    header_.at(static_cast<std::size_t>(taken_++)) = bytes[count++];
    if (taken_ < static_cast<std::int64_t>(kHeaderBytes)) continue;
    const auto bitrates = MpegBitrates(version_);
    const auto index = static_cast<std::size_t>(header_[2] >> 4);
    const bool padded = (header_[2] & std::byte{2}) != std::byte{0};
    if (index >= 1 && index <= bitrates.size()) {
      size_ = MpegFrameBytes(version_, hertz_, bitrates[index - 1]) + (padded ? 1 : 0);
    }
  }
  const auto rest = std::min(static_cast<std::int64_t>(bytes.size() - count), size_ - taken_);
  taken_ += rest;
  count += static_cast<std::size_t>(rest);
  if (taken_ == size_) {
    ++frames_;
    frameBytes_ += size_;
    taken_ = 0;
    size_ = kHeaderBytes;
  }
  return count;
}

}  // namespace kestrune::platform
