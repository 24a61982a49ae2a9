#include "platform/codec/LameEncoder.h"

#include <algorithm>
#include <string>
#include <string_view>

#include <fmt/format.h>

#include "base/Ignored.h"
#include "platform/codec/Bytes.h"
#include "platform/codec/CaptureErrors.h"
#include "platform/codec/Id3Tag.h"
#include "platform/codec/LameSettings.h"

namespace kestrune::platform {
namespace {

constexpr std::size_t kChunkFrames = 16384;
/// The worst case that LAME states for a call: 1.25 bytes a sample frame, and 7200.
constexpr std::size_t kBufferBytes = kChunkFrames * 5 / 4 + 7200;

std::uint8_t MethodNumber(vbr_mode method) {
  switch (method) {
    case vbr_off:
      return 1;
    case vbr_abr:
      return 2;
    case vbr_rh:
      return 3;
    default:
      return 4;
  }
}

std::string_view StereoText(const Mp3Parameters& parameters) {
  if (parameters.Channels == 1) return "mono";
  switch (parameters.TypeStereo) {
    case 1:
      return "simple stereo";
    case 3:
      return "forced joint stereo";
    case 4:
      return "dual channel";
    default:
      return "joint stereo";
  }
}

std::string BitrateText(const Mp3Parameters& parameters) {
  if (parameters.VBRCodingMethod == -1) return fmt::format("{} kbit/s constant", parameters.Bitrate);
  std::string text = parameters.VBRCodingMethod == 4
                         ? fmt::format("{} kbit/s average", parameters.VBRTargetBitrate)
                         : fmt::format("variable bitrate quality {}", parameters.VBRQuality);
  if (parameters.VBREnforceMinBitRate) text += fmt::format(", at least {} kbit/s", parameters.Bitrate);
  if (parameters.VBRMaxBitrate != 0) text += fmt::format(", at most {} kbit/s", parameters.VBRMaxBitrate);
  return text;
}

}  // namespace

std::int16_t LameEncoder::Prepare() {
  lame_.reset(lame_init());
  if (lame_ == nullptr) return kEncoderRefused;
  const std::int16_t result = ApplyMp3Parameters(lame_.get(), parameters_);
  if (result < 0) return result;
  return lame_init_params(lame_.get()) == 0 ? kCreated : kEncoderRefused;
}

bool LameEncoder::Begin(DiskFile& file) {
  file_ = &file;
  buffer_.resize(kBufferBytes);
  Mp3InfoFrame::Stream stream;
  stream.Hertz = parameters_.Frequency;
  stream.Rate = FindMpegRate(parameters_.Frequency).value_or(MpegRate{});
  stream.ModeBits = static_cast<std::uint8_t>(lame_get_mode(lame_.get()));
  stream.EmphasisBits = static_cast<std::uint8_t>(lame_get_emphasis(lame_.get()));
  if (lame_get_VBR(lame_.get()) == vbr_off) stream.ConstantBitrate = parameters_.Bitrate;
  infoFrame_.emplace(stream);
  walker_.emplace(stream.Rate.Version, stream.Hertz);

  // A tag needs one frame at least, so it holds the encoder's name until the tags are written.
  TagTexts untagged({});
  untagged.Encoder = std::string("LAME ") + get_lame_short_version();
  return file_->Append(AsBytes(Id3v2Tag(untagged))) && file_->Append(AsBytes(infoFrame_->Placeholder()));
}

bool LameEncoder::Write(std::span<const std::int16_t> samples) {
  const auto channels = static_cast<std::size_t>(parameters_.Channels);
  while (!samples.empty()) {
    const std::size_t frames = std::min(samples.size() / channels, kChunkFrames);
    // LAME takes the samples through pointers that it never writes through.
    auto* const pcm = const_cast<std::int16_t*>(samples.data());
    const int encoded =
        channels == 1 ? lame_encode_buffer(lame_.get(), pcm, pcm, static_cast<int>(frames), buffer_.data(),
                                           static_cast<int>(buffer_.size()))
                      : lame_encode_buffer_interleaved(lame_.get(), pcm, static_cast<int>(frames),
                                                       buffer_.data(), static_cast<int>(buffer_.size()));
    samples = samples.subspan(frames * channels);
    if (!AppendSound(encoded)) {
      failed_ = true;
      return false;
    }
    samplesIn_ += static_cast<std::int64_t>(frames);
  }
  return true;
}

bool LameEncoder::AppendSound(int encodedBytes) {
  if (encodedBytes < 0) return false;
  auto bytes = std::as_bytes(std::span(buffer_).first(static_cast<std::size_t>(encodedBytes)));
  if (!file_->Append(bytes)) return false;
  soundCrc_ = Mp3Crc(soundCrc_, bytes);
  while (!bytes.empty()) {
    bytes = bytes.subspan(walker_->Take(bytes));
    seekTable_.Note(walker_->Frames(), walker_->FrameBytes());
  }
  return true;
}

Mp3InfoFrame::Contents LameEncoder::Facts() const {
  Mp3InfoFrame::Contents facts;
  const vbr_mode method = lame_get_VBR(lame_.get());
  const int bitrate = method == vbr_off   ? parameters_.Bitrate
                      : method == vbr_abr ? lame_get_VBR_mean_bitrate_kbps(lame_.get())
                                          : lame_get_VBR_min_bitrate_kbps(lame_.get());
  facts.Frames = walker_->Frames();
  facts.SoundBytes = walker_->FrameBytes();
  facts.Delay = lame_get_encoder_delay(lame_.get());
  // After a full disk the end is where the disk ended.
  const std::int64_t surplus = facts.Frames * lame_get_framesize(lame_.get()) - facts.Delay - samplesIn_;
  facts.Padding = failed_ ? 0 : static_cast<std::int32_t>(std::clamp<std::int64_t>(surplus, 0, 4095));
  facts.SoundCrc = soundCrc_;
  facts.Method = MethodNumber(method);
  facts.Quality = static_cast<std::uint8_t>(
      std::max(0, 100 - 10 * lame_get_VBR_q(lame_.get()) - lame_get_quality(lame_.get())));
  facts.Bitrate = static_cast<std::uint8_t>(std::clamp(bitrate, 0, 255));
  facts.LowPass = std::max(0, lame_get_lowpassfreq(lame_.get()));
  if (parameters_.VBRHeader) facts.SeekTable = seekTable_.Table(infoFrame_->Size());
  return facts;
}

bool LameEncoder::Finish() {
  if (!failed_ && samplesIn_ > 0) {
    failed_ = !AppendSound(lame_encode_flush(lame_.get(), buffer_.data(), static_cast<int>(buffer_.size())));
  }
  const auto at = static_cast<std::int64_t>(kTagRoom);
  // A full disk may have cut off the last frame.
  if (failed_) base::Ignored(file_->Truncate(at + infoFrame_->Size() + walker_->FrameBytes()));
  return file_->WriteAt(at, AsBytes(infoFrame_->Frame(Facts()))) && !failed_;
}

std::string FormatDescription(const Mp3Parameters& asked) {
  const Mp3Parameters real = WithRealBitrates(asked);
  return fmt::format("MP3, {}, {} Hz, {}", BitrateText(real), real.Frequency, StereoText(real));
}

}  // namespace kestrune::platform
