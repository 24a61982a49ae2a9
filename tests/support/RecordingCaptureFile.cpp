#include "support/RecordingCaptureFile.h"

#include <variant>

#include <fmt/format.h>

namespace kestrune::test {

namespace {

/// A format as text. A format without an overload of its own is named by its samples.
struct TextOf {
  std::string operator()(const std::monostate& /*none*/) const { return "SetFormat none"; }
  std::string operator()(const platform::WavFormat& f) const {
    return fmt::format("SetFormatWAV {} {} {}", f.Frequency, f.Channels, f.Bits);
  }
  std::string operator()(const platform::RawFormat& f) const {
    return fmt::format("SetFormatRAW {} {} {} {}", f.Compression, f.Frequency, f.Channels, f.Bits);
  }
  std::string operator()(const platform::VoxFormat& f) const {
    return fmt::format("SetFormatVOX {}", f.Frequency);
  }
  std::string operator()(const platform::Mp3Parameters& f) const {
    return fmt::format("SetFormatMP3 {} {} {}", f.Frequency, f.Channels, f.Bitrate);
  }
  std::string operator()(const platform::OggFormat& f) const {
    return fmt::format("SetFormatOgg {} {} {} {} {} {}", f.Frequency, f.Channels, f.NominalBitrate,
                       f.MinBitrate, f.MaxBitrate, f.Quality);
  }
  std::string operator()(const platform::G726Format& f) const {
    return fmt::format("SetFormatG726 {} {}", f.Frequency, f.Bits);
  }
  std::string operator()(const platform::FlacFormat& f) const {
    return fmt::format("SetFormatFLAC {} {} {}", f.Frequency, f.Channels, f.Level);
  }
  std::string operator()(const platform::OpusFormat& f) const {
    return fmt::format("SetFormatOpus {} {} {} {}", f.Frequency, f.Channels, f.Bitrate, f.Voice ? 1 : 0);
  }
  template <typename Other>
  std::string operator()(const Other& format) const {
    const auto values = platform::FormatValues(platform::CaptureFormat(format));
    return fmt::format("SetFormat {} {}", values.SampleRate, values.Channels);
  }
};

}  // namespace

void RecordingCaptureFile::SetFormat(const platform::CaptureFormat& format) {
  if (const auto* mp3 = std::get_if<platform::Mp3Parameters>(&format)) Mp3 = *mp3;
  format_ = platform::FormatValues(format);
  description_ = std::visit(TextOf{}, format);
  Calls.push_back(description_);
}

platform::NumberedResult RecordingCaptureFile::Create(std::string_view path) {
  Calls.push_back(fmt::format("Create {}", path));
  open_ = held_ = failed_ = false;
  if (FailCreate) return {.Number = -1, .Cause = "Permission denied"};
  if (files_ != nullptr) {
    if (auto created = files_->CreateHeld(path); !created) return created;
  }
  open_ = held_ = true;
  Written.push_back({std::string(path), format_, {}, false});
  return {};
}

base::Result RecordingCaptureFile::WriteBlock(std::span<const std::int16_t> samples) {
  if (!open_) return base::Result::Failed("no file is open");
  failed_ = failed_ || FailWrites;
  if (failed_) return base::Result::Failed("No space left on device");
  File& file = Written.back();
  if (files_ != nullptr) {
    const auto bytes = std::as_bytes(samples);
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    if (auto written = files_->Append(file.Path, text); !written) return written;
  }
  file.Samples.insert(file.Samples.end(), samples.begin(), samples.end());
  return base::Result::Done();
}

std::int32_t RecordingCaptureFile::Length() const {
  if (Written.empty()) return 0;
  const File& file = Written.back();
  const auto frames = static_cast<std::int64_t>(file.Samples.size()) / file.Format.Channels;
  return static_cast<std::int32_t>(frames * 1000 / file.Format.SampleRate);
}

base::Result RecordingCaptureFile::Close() {
  Calls.emplace_back("Close");
  if (open_) Written.back().Closed = true;
  open_ = false;
  return base::Result::Done();
}

}  // namespace kestrune::test
