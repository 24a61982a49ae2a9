#include "platform/codec/EncodedFile.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "base/Ignored.h"
#include "platform/codec/CaptureErrors.h"
#include "platform/codec/CodecTable.h"

namespace kestrune::platform {
void EncodedFile::Create(std::string_view path) {
  Close();
  framesWritten_ = 0;
  open_ = FormatValues();
  const Codec* const codec = FindCodec(format_);
  if (codec == nullptr) {
    lastResult_ = kNoFormat;
    return;
  }
  auto encoder = codec->MakeEncoder(format_);
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
  const Codec* const codec = FindCodec(format_);
  return codec != nullptr ? codec->Description(format_) : "No format";
}

void EncodedFile::Close() {
  if (encoder_ == nullptr) return;
  // A full disk leaves a short file: there is nobody left to tell here, and the writes have said it already.
  base::Ignored(encoder_->Finish());
  encoder_.reset();
  file_.Close();
}

}  // namespace kestrune::platform
