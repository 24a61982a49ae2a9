#include "support/RecordingCaptureFile.h"

#include <utility>

#include <fmt/format.h>

namespace kestrune::test {

void RecordingCaptureFile::Prepare(std::string call, platform::PcmFormat format) {
  format_ = format;
  description_ = call;
  Calls.push_back(std::move(call));
}

void RecordingCaptureFile::SetFormatWAV(std::int32_t frequency, std::int16_t channels, std::int16_t bits) {
  Prepare(fmt::format("SetFormatWAV {} {} {}", frequency, channels, bits), {frequency, channels});
}

void RecordingCaptureFile::SetFormatRAW(std::int16_t compression, std::int32_t frequency,
                                        std::int16_t channels, std::int16_t bits) {
  Prepare(fmt::format("SetFormatRAW {} {} {} {}", compression, frequency, channels, bits),
          {frequency, channels});
}

void RecordingCaptureFile::SetFormatVOX(std::int32_t frequency) {
  Prepare(fmt::format("SetFormatVOX {}", frequency), {frequency, 1});
}

void RecordingCaptureFile::SetFormatMP3(const platform::Mp3Parameters& parameters) {
  Mp3 = parameters;
  Prepare(fmt::format("SetFormatMP3 {} {} {}", parameters.Frequency, parameters.Channels, parameters.Bitrate),
          {parameters.Frequency, parameters.Channels});
}

void RecordingCaptureFile::SetFormatOgg(std::int32_t frequency, std::int16_t channels,
                                        std::int16_t nominalBitrate, std::int16_t minBitrate,
                                        std::int16_t maxBitrate, std::int16_t quality) {
  Prepare(fmt::format("SetFormatOgg {} {} {} {} {} {}", frequency, channels, nominalBitrate, minBitrate,
                      maxBitrate, quality),
          {frequency, channels});
}

void RecordingCaptureFile::SetFormatG726(std::int32_t frequency, std::int16_t bits) {
  Prepare(fmt::format("SetFormatG726 {} {}", frequency, bits), {frequency, 1});
}

void RecordingCaptureFile::Create(std::string_view path) {
  Calls.push_back(fmt::format("Create {}", path));
  open_ = !FailCreate && (files_ == nullptr || files_->Replace(path, {}));
  lastResult_ = open_ ? 0 : -1;
  if (open_) Written.push_back({std::string(path), format_, {}, false});
}

bool RecordingCaptureFile::WriteBlock(std::span<const std::int16_t> samples) {
  if (!open_ || FailWrites) return false;
  File& file = Written.back();
  if (files_ != nullptr) {
    const auto bytes = std::as_bytes(samples);
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    if (!files_->Append(file.Path, text)) return false;
  }
  file.Samples.insert(file.Samples.end(), samples.begin(), samples.end());
  return true;
}

std::int32_t RecordingCaptureFile::Length() const {
  if (Written.empty()) return 0;
  const File& file = Written.back();
  const auto frames = static_cast<std::int64_t>(file.Samples.size()) / file.Format.Channels;
  return static_cast<std::int32_t>(frames * 1000 / file.Format.SampleRate);
}

void RecordingCaptureFile::Close() {
  Calls.emplace_back("Close");
  if (open_) Written.back().Closed = true;
  open_ = false;
}

}  // namespace kestrune::test
