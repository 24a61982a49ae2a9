#include "platform/codec/EncodedFile.h"

#include <algorithm>
#include <cerrno>
#include <limits>
#include <utility>

#include "base/Ignored.h"
#include "platform/codec/CaptureErrors.h"
#include "platform/codec/CodecTable.h"

namespace kestrune::platform {
namespace {

NumberedResult Refused(std::int16_t number) {
  return {.Number = number, .Cause = std::string(MeaningOf(number))};
}

}  // namespace

NumberedResult EncodedFile::Create(std::string_view path) {
  base::Ignored(Close());
  Release();
  framesWritten_ = 0;
  open_ = FormatValues();
  const Codec* const codec = FindCodec(format_);
  if (codec == nullptr) return Refused(kNoFormat);
  auto encoder = codec->MakeEncoder(format_);
  if (const std::int16_t prepared = encoder->Prepare(); prepared < 0) return Refused(prepared);
  if (!file_.Create(path)) {
    return {.Number = file_.Error() == EBUSY ? kNameHeld : kFileNotOpened, .Cause = file_.Failure().Cause()};
  }
  if (!encoder->Begin(file_)) {
    const base::Result failure = WriteFailure();
    file_.CloseAndRemove();
    return {.Number = kDiskFull, .Cause = failure.Cause()};
  }
  encoder_ = std::move(encoder);
  failed_ = false;
  return {};
}

PcmFormat EncodedFile::FormatValues() const {
  return platform::FormatValues(format_);
}

base::Result EncodedFile::WriteBlock(std::span<const std::int16_t> samples) {
  if (encoder_ == nullptr) return base::Result::Failed("no file is open");
  if (failed_) return WriteFailure();
  const auto channels = static_cast<std::size_t>(open_.Channels);
  const std::size_t frames = samples.size() / channels;
  if (!encoder_->Write(samples.first(frames * channels))) {
    failed_ = true;
    return WriteFailure();
  }
  framesWritten_ += static_cast<std::int64_t>(frames);
  if (frames * channels != samples.size()) return base::Result::Failed("the block ends within a frame");
  return base::Result::Done();
}

base::Result EncodedFile::WriteFailure() const {
  return file_.Error() == 0 ? base::Result::Failed("the encoder failed") : file_.Failure();
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

base::Result EncodedFile::Close() {
  if (encoder_ == nullptr) return base::Result::Done();
  const bool finished = encoder_->Finish();
  encoder_.reset();
  return finished ? base::Result::Done() : WriteFailure();
}

void EncodedFile::Release() {
  if (encoder_ == nullptr) file_.Close();
}

}  // namespace kestrune::platform
