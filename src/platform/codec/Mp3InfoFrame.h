#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/codec/MpegAudio.h"

namespace kestrune::platform {

/// Where each hundredth of the sound begins in the file. It notes where frames end, and drops every
/// second note when there are too many.
class Mp3SeekTable {
 public:
  /// Frames and bytes of sound so far; neither falls.
  void Note(std::int64_t frames, std::int64_t bytes);
  /// 100 bytes: the part of the stream's bytes, in 256ths, that comes before each hundredth of its
  /// frames. `lead` is the number of bytes before the sound.
  [[nodiscard]] std::string Table(std::int64_t lead) const;

 private:
  struct Point {
    std::int64_t Frames = 0;
    std::int64_t Bytes = 0;
  };
  std::vector<Point> points_;
  Point last_;
  std::int64_t stride_ = 1;  ///< frames between notes
};

/// The first frame of an MP3 stream, silent itself, that says how long the sound is and how much to cut off
/// at both ends: with it a player reproduces exactly the samples that were encoded.
///
/// LAME's own frame is left out at bitrates whose frames cannot hold it, and always has a seek table. This
/// one takes a frame of a higher bitrate then.
class Mp3InfoFrame {
 public:
  struct Stream {
    MpegRate Rate;
    std::int32_t Hertz = 44100;
    std::uint8_t ModeBits = 0;         ///< of the frame header: 0 stereo, 1 joint, 2 dual channel, 3 mono
    std::uint8_t EmphasisBits = 0;     ///< of the frame header
    std::int16_t ConstantBitrate = 0;  ///< kbit/s, 0 if it varies
  };
  struct Contents {
    std::int64_t Frames = 0;
    std::int64_t SoundBytes = 0;
    std::int32_t Delay = 0;    ///< sample frames to cut off at the front, less the decoder's own delay
    std::int32_t Padding = 0;  ///< sample frames to cut off at the end
    std::uint16_t SoundCrc = 0;
    std::uint8_t Method = 1;   ///< 1 constant, 2 average, 3 old variable, 4 mtrh
    std::uint8_t Quality = 0;  ///< 0 to 100
    std::uint8_t Bitrate = 0;  ///< constant, average or least, kbit/s, at most 255
    std::int32_t LowPass = 0;  ///< Hz
    std::optional<std::string> SeekTable;
  };

  explicit Mp3InfoFrame(const Stream& stream);

  [[nodiscard]] std::int64_t Size() const { return static_cast<std::int64_t>(size_); }
  /// A silent frame, to be overwritten at the end.
  [[nodiscard]] std::string Placeholder() const;
  [[nodiscard]] std::string Frame(const Contents& contents) const;
  /// Whether a frame of this stream, as long as Size, names this length.
  [[nodiscard]] bool Says(std::string_view frame, std::int64_t frames, std::int64_t soundBytes) const;

 private:
  Stream stream_;
  std::uint8_t bitrateIndex_ = 0;
  std::size_t size_ = 0;
};

/// The 16-bit checksum of the info frame, over several pieces; begins with 0.
[[nodiscard]] std::uint16_t Mp3Crc(std::uint16_t crc, std::span<const std::byte> bytes);

}  // namespace kestrune::platform
