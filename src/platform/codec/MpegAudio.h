#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace kestrune::platform {

/// The three families of sample rates, each half of the one before, by the bits that a frame's header has for
/// them.
enum class MpegVersion : std::uint8_t { Mpeg25 = 0, Mpeg2 = 2, Mpeg1 = 3 };

struct MpegRate {
  MpegVersion Version = MpegVersion::Mpeg1;
  std::uint8_t Index = 0;  ///< in a frame's header
};

/// Nothing if MPEG layer III has no such rate.
[[nodiscard]] std::optional<MpegRate> FindMpegRate(std::int32_t hertz);

/// The rate in Hz; nothing if there is none of that index.
[[nodiscard]] std::optional<std::int32_t> HertzOf(const MpegRate& rate);

/// The bitrates in kbit/s, rising; the first has index 1 in a frame's header. For the lowest rates those that
/// the encoder makes: up to 64.
[[nodiscard]] std::span<const std::int16_t> MpegBitrates(MpegVersion version);

/// Sample frames in a frame.
[[nodiscard]] constexpr std::int32_t MpegFrameSamples(MpegVersion version) {
  return version == MpegVersion::Mpeg1 ? 1152 : 576;
}

[[nodiscard]] constexpr std::int64_t MpegFrameBytes(MpegVersion version, std::int32_t hertz,
                                                    std::int32_t kilobits) {
  return std::int64_t{MpegFrameSamples(version)} / 8 * kilobits * 1000 / hertz;
}

/// Follows an encoder's bytes from frame to frame. The encoder holds frames back until they are full, so that
/// its own count runs ahead of its bytes.
class MpegFrameWalker {
 public:
  MpegFrameWalker(MpegVersion version, std::int32_t hertz) : version_(version), hertz_(hertz) {}

  /// Takes bytes up to the end of a frame, or all; how many it took.
  [[nodiscard]] std::size_t Take(std::span<const std::byte> bytes);
  /// Whole frames so far, and the bytes that they fill.
  [[nodiscard]] std::int64_t Frames() const { return frames_; }
  [[nodiscard]] std::int64_t FrameBytes() const { return frameBytes_; }

 private:
  static constexpr std::size_t kHeaderBytes = 4;

  MpegVersion version_;
  std::int32_t hertz_;
  std::array<std::byte, kHeaderBytes> header_{};
  std::int64_t size_ = kHeaderBytes;  ///< of the present frame, as far as known
  std::int64_t taken_ = 0;            ///< of the present frame
  std::int64_t frames_ = 0;
  std::int64_t frameBytes_ = 0;
};

}  // namespace kestrune::platform
