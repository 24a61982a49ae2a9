#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/CaptureFile.h"
#include "platform/Files.h"

namespace kestrune::test {

/// A capture file that encodes nothing: it keeps every call as text and the samples as they came. With Files
/// behind it, the file itself stands there too, its bytes being the samples.
class RecordingCaptureFile final : public platform::CaptureFile {
 public:
  struct File {
    std::string Path;
    platform::PcmFormat Format;
    std::vector<std::int16_t> Samples;
    bool Closed = false;
  };

  explicit RecordingCaptureFile(platform::Files* files = nullptr) : files_(files) {}

  void SetFormat(const platform::CaptureFormat& format) override;
  void Create(std::string_view path) override;
  [[nodiscard]] std::int16_t LastResult() const override { return lastResult_; }
  [[nodiscard]] platform::PcmFormat FormatValues() const override { return format_; }
  [[nodiscard]] bool WriteBlock(std::span<const std::int16_t> samples) override;
  [[nodiscard]] std::int32_t Length() const override;
  /// The text of the last SetFormat, or "nothing prepared".
  [[nodiscard]] std::string FormatDescription() const override { return description_; }
  void Close() override;

  [[nodiscard]] bool IsOpen() const { return open_; }

  /// While set, Create fails and leaves no file.
  bool FailCreate = false;
  /// While set, the file takes no more.
  bool FailWrites = false;
  /// "SetFormatWAV 44100 2 16", "Create PATH", "Close" and so on; blocks are not listed here, but kept in
  /// Written.
  std::vector<std::string> Calls;
  /// The parameters of the last SetFormat for MP3.
  platform::Mp3Parameters Mp3;
  /// Every file made so far, the newest last.
  std::vector<File> Written;

 private:
  platform::Files* files_;
  platform::PcmFormat format_;
  std::string description_ = "nothing prepared";
  std::int16_t lastResult_ = 0;
  bool open_ = false;
};

}  // namespace kestrune::test
