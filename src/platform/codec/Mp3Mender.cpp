#include "platform/codec/Mp3Mender.h"

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>

#include "platform/codec/Bytes.h"
#include "platform/codec/Id3Tag.h"
#include "platform/codec/Mp3InfoFrame.h"
#include "platform/codec/MpegAudio.h"

namespace kestrune::platform {
namespace {

constexpr std::size_t kHeaderBytes = 4;
constexpr std::int64_t kId3v1Bytes = 128;
constexpr std::size_t kWindow = std::size_t{1} << 18;
/// Sample frames at the front that belong to no sound: the encoder's delay, as LAME has it at every rate.
constexpr std::int32_t kEncoderDelay = 576;
/// What a decoder holds back at the end, as it would wait for a further frame.
constexpr std::int32_t kDecoderDelay = 529;
/// Players know a frame by the next one, and take a file with a single one for no sound at all.
constexpr std::int64_t kFewestFrames = 2;

struct FrameHeader {
  MpegRate Rate;
  std::int32_t Hertz = 0;
  std::int16_t Bitrate = 0;
  std::int64_t Size = 0;
  std::uint8_t ModeBits = 0;
  std::uint8_t EmphasisBits = 0;
};

/// Nothing if no frame of layer III begins with these bytes.
std::optional<FrameHeader> ReadHeader(std::string_view bytes) {
  if (bytes.size() < kHeaderBytes || ReadLe(bytes, 0, 1) != 0xFF) return std::nullopt;
  const auto second = static_cast<unsigned>(ReadLe(bytes, 1, 1));
  const auto third = static_cast<unsigned>(ReadLe(bytes, 2, 1));
  const auto fourth = static_cast<unsigned>(ReadLe(bytes, 3, 1));
  constexpr unsigned kReservedVersion = 1;
  const unsigned version = second >> 3 & 3U;
  if ((second & 0xE6U) != 0xE2 || version == kReservedVersion) return std::nullopt;
  FrameHeader header;
  header.Rate = {static_cast<MpegVersion>(version), static_cast<std::uint8_t>(third >> 2 & 3U)};
  const auto hertz = HertzOf(header.Rate);
  const auto bitrates = MpegBitrates(header.Rate.Version);
  const std::size_t index = third >> 4;
  if (!hertz || index < 1 || index > bitrates.size()) return std::nullopt;
  header.Hertz = *hertz;
  header.Bitrate = bitrates[index - 1];
  header.Size = MpegFrameBytes(header.Rate.Version, *hertz, header.Bitrate) + (third >> 1 & 1U);
  header.ModeBits = static_cast<std::uint8_t>(fourth >> 6);
  header.EmphasisBits = static_cast<std::uint8_t>(fourth & 3U);
  return header;
}

/// The whole frames from a place on, as far as they go on from one another.
class Sound {
 public:
  /// `like` is a frame of the same stream.
  Sound(const DiskFile& file, std::int64_t at, const FrameHeader& like)
      : file_(file), like_(like), start_(at), at_(at) {}

  /// Reads to the end, or until it is stopped.
  void Read(const std::stop_token& stop) {
    while (!stop.stop_requested() && Step()) {
    }
  }

  [[nodiscard]] std::int64_t Frames() const { return frames_; }
  [[nodiscard]] std::int64_t Bytes() const { return at_ - start_; }
  [[nodiscard]] std::int64_t End() const { return at_; }
  [[nodiscard]] std::uint16_t Crc() const { return crc_; }
  [[nodiscard]] std::string SeekTable(std::int64_t lead) const { return seekTable_.Table(lead); }
  /// The one bitrate of all frames, or 0.
  [[nodiscard]] std::int16_t ConstantBitrate() const { return bitrate_; }
  /// Whether it ends for want of bytes alone.
  [[nodiscard]] bool EndsInAFrame() const {
    return Left() < static_cast<std::int64_t>(kHeaderBytes) || cutFrame_;
  }

 private:
  [[nodiscard]] std::int64_t Left() const { return file_.Size() - at_; }

  bool Step() {
    const auto header = ReadHeader(At(kHeaderBytes));
    if (!header || header->Rate.Version != like_.Rate.Version || header->Rate.Index != like_.Rate.Index)
      return false;
    const std::string_view frame = At(static_cast<std::size_t>(header->Size));
    cutFrame_ = frame.empty();
    if (cutFrame_) return false;
    crc_ = Mp3Crc(crc_, AsBytes(frame));
    bitrate_ = frames_ == 0 || bitrate_ == header->Bitrate ? header->Bitrate : std::int16_t{0};
    ++frames_;
    at_ += header->Size;
    seekTable_.Note(frames_, Bytes());
    return true;
  }

  /// So many bytes from here on; empty if there are fewer.
  std::string_view At(std::size_t count) {
    if (Left() < static_cast<std::int64_t>(count)) return {};
    if (at_ + static_cast<std::int64_t>(count) > windowAt_ + static_cast<std::int64_t>(window_.size())) {
      windowAt_ = at_;
      window_ =
          file_.ReadAt(at_, static_cast<std::size_t>(std::min(Left(), std::int64_t{kWindow}))).value_or("");
      if (window_.size() < count) return {};
    }
    return std::string_view(window_).substr(static_cast<std::size_t>(at_ - windowAt_), count);
  }

  const DiskFile& file_;
  FrameHeader like_;
  std::int64_t start_;
  std::int64_t at_;
  std::int64_t windowAt_ = 0;
  std::string window_;
  std::int64_t frames_ = 0;
  std::int16_t bitrate_ = 0;
  std::uint16_t crc_ = 0;
  Mp3SeekTable seekTable_;
  bool cutFrame_ = false;
};

/// The info frame as it was reserved; nothing if the frame that is there cannot be one.
std::optional<Mp3InfoFrame::Stream> StreamOf(const FrameHeader& first, std::string_view frame,
                                             std::int16_t constantBitrate) {
  for (const std::int16_t bitrate : {constantBitrate, std::int16_t{0}}) {
    const Mp3InfoFrame::Stream stream{.Rate = first.Rate,
                                      .Hertz = first.Hertz,
                                      .ModeBits = first.ModeBits,
                                      .EmphasisBits = first.EmphasisBits,
                                      .ConstantBitrate = bitrate};
    const std::string reserved = Mp3InfoFrame(stream).Placeholder();
    if (reserved.size() == frame.size() && frame.starts_with(reserved.substr(0, kHeaderBytes))) return stream;
  }
  return std::nullopt;
}

}  // namespace

MendedCapture MendMp3(DiskFile& file, const std::stop_token& stop) {
  const auto tags = ReadId3(file);
  constexpr auto kInfoAt = static_cast<std::int64_t>(kTagRoom);
  const std::string ours = Id3v2Tag(TagTexts({})).substr(0, 10);
  const auto head = file.ReadAt(0, std::min(static_cast<std::size_t>(file.Size()), ours.size()));
  if (!head || !ours.starts_with(*head)) return NoCapture();
  if (file.Size() < kInfoAt + static_cast<std::int64_t>(kHeaderBytes)) return NoSound();
  const auto first = ReadHeader(file.ReadAt(kInfoAt, kHeaderBytes).value_or(""));
  if (!tags || !first) return NoCapture();
  if (file.Size() < kInfoAt + first->Size) return NoSound();

  Sound sound(file, kInfoAt + first->Size, *first);
  sound.Read(stop);
  if (stop.stop_requested()) return NotMended("it was broken off");
  const std::int32_t frameSamples = MpegFrameSamples(first->Rate.Version);
  const std::int64_t samples = sound.Frames() * frameSamples - kEncoderDelay - kDecoderDelay;
  if (samples <= 0 || sound.Frames() < kFewestFrames) return sound.EndsInAFrame() ? NoSound() : NoCapture();

  const std::string info = file.ReadAt(kInfoAt, static_cast<std::size_t>(first->Size)).value_or("");
  const auto stream = StreamOf(*first, info, sound.ConstantBitrate());
  if (!stream) return NoCapture();
  const std::int64_t left = file.Size() - sound.End();
  const bool tagged = left == kId3v1Bytes && file.ReadAt(sound.End(), 3) == "TAG";
  if (left > kMostCutOff) return NotMended("it is damaged long before its end");
  if (!tagged && left > 0 && !file.Truncate(sound.End())) return NotWritten(file);
  const Mp3InfoFrame frame(*stream);
  if (!frame.Says(info, sound.Frames(), sound.Bytes())) {
    Mp3InfoFrame::Contents facts;
    facts.Frames = sound.Frames();
    facts.SoundBytes = sound.Bytes();
    facts.Delay = kEncoderDelay;
    facts.Padding = kDecoderDelay;
    facts.SoundCrc = sound.Crc();
    facts.Method = stream->ConstantBitrate != 0 ? 1 : 0;
    facts.Bitrate = static_cast<std::uint8_t>(std::clamp<int>(stream->ConstantBitrate, 0, 255));
    facts.SeekTable = sound.SeekTable(frame.Size());
    if (!file.WriteAt(kInfoAt, AsBytes(frame.Frame(facts)))) return NotWritten(file);
  }
  return Mended(samples * 1000 / first->Hertz, *tags);
}

}  // namespace kestrune::platform
