#include "platform/codec/EncodedFile.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "base/Ignored.h"
#include "platform/codec/CaptureErrors.h"
#include "platform/codec/G726Encoder.h"
#include "platform/codec/LameEncoder.h"
#include "platform/codec/SndfileEncoder.h"
#include "platform/codec/VorbisEncoder.h"
#include "platform/codec/WaveEncoder.h"

namespace kestrune::platform {
namespace {

struct EncoderOf {
  std::unique_ptr<Encoder> operator()(const std::monostate& /*none*/) const { return nullptr; }
  std::unique_ptr<Encoder> operator()(const WavFormat& format) const {
    return std::make_unique<WaveEncoder>(format);
  }
  std::unique_ptr<Encoder> operator()(const RawFormat& format) const {
    return std::make_unique<SndfileEncoder>(format);
  }
  std::unique_ptr<Encoder> operator()(const VoxFormat& format) const {
    return std::make_unique<SndfileEncoder>(format);
  }
  std::unique_ptr<Encoder> operator()(const Mp3Parameters& format) const {
    return std::make_unique<LameEncoder>(format);
  }
  std::unique_ptr<Encoder> operator()(const OggFormat& format) const {
    return std::make_unique<VorbisEncoder>(format);
  }
  std::unique_ptr<Encoder> operator()(const G726Format& format) const {
    return std::make_unique<G726Encoder>(format);
  }
};

}  // namespace

void EncodedFile::SetFormatWAV(std::int32_t frequency, std::int16_t channels, std::int16_t bits) {
  format_ = WavFormat{frequency, channels, bits};
}

void EncodedFile::SetFormatRAW(std::int16_t compression, std::int32_t frequency, std::int16_t channels,
                               std::int16_t bits) {
  format_ = RawFormat{compression, frequency, channels, bits};
}

void EncodedFile::SetFormatVOX(std::int32_t frequency) {
  format_ = VoxFormat{frequency};
}

void EncodedFile::SetFormatMP3(const Mp3Parameters& parameters) {
  format_ = parameters;
}

void EncodedFile::SetFormatOgg(std::int32_t frequency, std::int16_t channels, std::int16_t nominalBitrate,
                               std::int16_t minBitrate, std::int16_t maxBitrate, std::int16_t quality) {
  format_ = OggFormat{frequency, channels, nominalBitrate, minBitrate, maxBitrate, quality};
}

void EncodedFile::SetFormatG726(std::int32_t frequency, std::int16_t bits) {
  format_ = G726Format{frequency, bits};
}

void EncodedFile::Create(std::string_view path) {
  Close();
  framesWritten_ = 0;
  open_ = FormatValues();
  auto encoder = std::visit(EncoderOf{}, format_);
  if (encoder == nullptr) {
    lastResult_ = kNoFormat;
    return;
  }
  lastResult_ = encoder->Prepare();
  if (lastResult_ < 0) return;
  if (!file_.Create(path)) {
    lastResult_ = kFileNotOpened;
    return;
  }
  if (!encoder->Begin(file_)) {
    file_.CloseAndRemove();
    lastResult_ = kDiskFull;
    return;
  }
  encoder_ = std::move(encoder);
  failed_ = false;
}

PcmFormat EncodedFile::FormatValues() const {
  return platform::FormatValues(format_);
}

bool EncodedFile::WriteBlock(std::span<const std::int16_t> samples) {
  if (encoder_ == nullptr || failed_) return false;
  const auto channels = static_cast<std::size_t>(open_.Channels);
  const std::size_t frames = samples.size() / channels;
  if (!encoder_->Write(samples.first(frames * channels))) {
    failed_ = true;
    return false;
  }
  framesWritten_ += static_cast<std::int64_t>(frames);
  return frames * channels == samples.size();
}

std::int32_t EncodedFile::Length() const {
  if (framesWritten_ == 0) return 0;
  return static_cast<std::int32_t>(std::min<std::int64_t>(framesWritten_ * 1000 / open_.SampleRate,
                                                          std::numeric_limits<std::int32_t>::max()));
}

std::string EncodedFile::FormatDescription() const {
  return platform::FormatDescription(format_);
}

void EncodedFile::Close() {
  if (encoder_ == nullptr) return;
  // A full disk leaves a short file: there is nobody left to tell here, and the writes have said it already.
  base::Ignored(encoder_->Finish());
  encoder_.reset();
  file_.Close();
}

}  // namespace kestrune::platform
