#include "platform/codec/Mp3InfoFrame.h"

#include <algorithm>
#include <array>
#include <limits>

#include "platform/codec/Bytes.h"

namespace kestrune::platform {
namespace {

constexpr std::size_t kHeaderBytes = 4;
constexpr std::size_t kSeekTableBytes = 100;
constexpr std::size_t kInfoBytes = 4 + 4 + 4 + 4 + kSeekTableBytes + 4;
constexpr std::size_t kEncoderInfoBytes = 36;
constexpr std::size_t kMaxPoints = 1000;
constexpr std::uint8_t kMono = 3;

std::size_t SideInfoBytes(MpegVersion version, std::uint8_t modeBits) {
  if (version == MpegVersion::Mpeg1) return modeBits == kMono ? 17 : 32;
  return modeBits == kMono ? 9 : 17;
}

/// Players take the bitrate of the first frame for that of the file if they know no better.
std::int16_t PreferredBitrate(const Mp3InfoFrame::Stream& stream) {
  if (stream.ConstantBitrate != 0) return stream.ConstantBitrate;
  switch (stream.Rate.Version) {
    case MpegVersion::Mpeg1:
      return 128;
    case MpegVersion::Mpeg2:
      return 64;
    default:
      return 32;
  }
}

std::uint64_t Capped(std::int64_t value) {
  return static_cast<std::uint64_t>(
      std::clamp<std::int64_t>(value, 0, std::numeric_limits<std::uint32_t>::max()));
}

constexpr std::array<std::uint16_t, 256> CrcTable() {
  std::array<std::uint16_t, 256> table{};
  for (unsigned i = 0; i < table.size(); ++i) {
    unsigned crc = i;
    for (int bit = 0; bit < 8; ++bit) crc = (crc & 1U) != 0 ? crc >> 1 ^ 0xA001U : crc >> 1;
    table[i] = static_cast<std::uint16_t>(crc);
  }
  return table;
}

}  // namespace

std::uint16_t Mp3Crc(std::uint16_t crc, std::span<const std::byte> bytes) {
  static constexpr auto kTable = CrcTable();
  for (const std::byte byte : bytes) {
    crc = static_cast<std::uint16_t>(crc >> 8 ^ kTable[(crc ^ static_cast<unsigned>(byte)) & 0xFFU]);
  }
  return crc;
}

void Mp3SeekTable::Note(std::int64_t frames, std::int64_t bytes) {
  last_ = {frames, bytes};
  if (!points_.empty() && frames < points_.back().Frames + stride_) return;
  points_.push_back(last_);
  if (points_.size() < kMaxPoints) return;
  for (std::size_t i = 0; i < points_.size() / 2; ++i) points_[i] = points_[2 * i + 1];
  points_.resize(points_.size() / 2);
  stride_ = std::max<std::int64_t>(stride_ * 2, 1);
}

std::string Mp3SeekTable::Table(std::int64_t lead) const {
  const std::int64_t streamBytes = std::max<std::int64_t>(lead + last_.Bytes, 1);
  std::string table;
  for (std::int64_t i = 0; i < static_cast<std::int64_t>(kSeekTableBytes); ++i) {
    const std::int64_t frame = last_.Frames * i / static_cast<std::int64_t>(kSeekTableBytes);
    const auto behind = std::upper_bound(points_.begin(), points_.end(), frame,
                                         [](std::int64_t f, const Point& p) { return f < p.Frames; });
    const Point from = behind == points_.begin() ? Point{} : *(behind - 1);
    const Point to = behind == points_.end() ? last_ : *behind;
    const std::int64_t span = std::max<std::int64_t>(to.Frames - from.Frames, 1);
    const std::int64_t bytes = from.Bytes + (to.Bytes - from.Bytes) * (frame - from.Frames) / span;
    table.push_back(
        static_cast<char>(i == 0 ? 0 : std::min<std::int64_t>((lead + bytes) * 256 / streamBytes, 255)));
  }
  return table;
}

Mp3InfoFrame::Mp3InfoFrame(const Stream& stream) : stream_(stream) {
  const MpegVersion version = stream.Rate.Version;
  const auto bitrates = MpegBitrates(version);
  const std::size_t needed =
      kHeaderBytes + SideInfoBytes(version, stream.ModeBits) + kInfoBytes + kEncoderInfoBytes;
  for (std::size_t i = 0; i < bitrates.size(); ++i) {
    bitrateIndex_ = static_cast<std::uint8_t>(i + 1);
    size_ = static_cast<std::size_t>(MpegFrameBytes(version, stream.Hertz, bitrates[i]));
    if (bitrates[i] >= PreferredBitrate(stream) && size_ >= needed) break;
  }
}

std::string Mp3InfoFrame::Placeholder() const {
  std::string frame;
  frame += '\xFF';
  // Layer III, no checksum.
  AppendBe(frame, 0xE3U | static_cast<unsigned>(stream_.Rate.Version) << 3, 1);
  AppendBe(frame, static_cast<unsigned>(bitrateIndex_) << 4 | static_cast<unsigned>(stream_.Rate.Index) << 2,
           1);
  // Original, like the frames after it.
  AppendBe(frame, static_cast<unsigned>(stream_.ModeBits) << 6 | 4U | stream_.EmphasisBits, 1);
  frame.resize(size_, '\0');
  return frame;
}

std::string Mp3InfoFrame::Frame(const Contents& contents) const {
  std::string frame = Placeholder();
  frame.resize(kHeaderBytes + SideInfoBytes(stream_.Rate.Version, stream_.ModeBits));

  const std::int64_t streamBytes = Size() + contents.SoundBytes;
  frame += stream_.ConstantBitrate != 0 ? "Info" : "Xing";
  AppendBe(frame, contents.SeekTable ? 0xF : 0xB, 4);  // frames, bytes, seek table, quality
  AppendBe(frame, Capped(contents.Frames), 4);
  AppendBe(frame, Capped(streamBytes), 4);
  if (contents.SeekTable) frame += *contents.SeekTable;
  AppendBe(frame, contents.Quality, 4);

  frame += "LAME3.100";
  AppendBe(frame, contents.Method, 1);
  AppendBe(frame, static_cast<unsigned>(std::clamp(contents.LowPass / 100, 0, 255)), 1);
  frame.append(4 + 2 + 2 + 1, '\0');  // loudness not measured, details of the psychoacoustics not given
  AppendBe(frame, contents.Bitrate, 1);
  AppendBe(frame, static_cast<unsigned>(contents.Delay) << 12 | static_cast<unsigned>(contents.Padding), 3);
  frame.append(1 + 1 + 2, '\0');  // source, gain and preset not given
  AppendBe(frame, Capped(streamBytes), 4);
  AppendBe(frame, contents.SoundCrc, 2);
  AppendBe(frame, Mp3Crc(0, AsBytes(frame)), 2);
  frame.resize(size_, '\0');
  return frame;
}

bool Mp3InfoFrame::Says(std::string_view frame, std::int64_t frames, std::int64_t soundBytes) const {
  const std::size_t at = kHeaderBytes + SideInfoBytes(stream_.Rate.Version, stream_.ModeBits);
  std::string lengths;
  AppendBe(lengths, Capped(frames), 4);
  AppendBe(lengths, Capped(Size() + soundBytes), 4);
  const std::string_view name = frame.substr(at, 4);
  return (name == "Info" || name == "Xing") && frame.substr(at + 8, 8) == lengths;
}

}  // namespace kestrune::platform
