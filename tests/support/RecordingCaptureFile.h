#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/CaptureFile.h"
#include "support/MemoryFiles.h"

namespace kestrune::test {

/// A capture file that encodes nothing: it keeps every call as text and the samples as they came. With files
/// given, the file itself is there too, and its bytes are the samples.
class RecordingCaptureFile final : public platform::CaptureFile {
 public:
  struct File {
    std::string Path;
    platform::PcmFormat Format;
    std::vector<std::int16_t> Samples;
    bool Closed = false;
  };

  explicit RecordingCaptureFile(MemoryFiles* files = nullptr) : files_(files) {}

  void SetFormat(const platform::CaptureFormat& format) override;
  platform::NumberedResult Create(std::string_view path) override;
  [[nodiscard]] platform::PcmFormat FormatValues() const override { return format_; }
  base::Result WriteBlock(std::span<const std::int16_t> samples) override;
  [[nodiscard]] std::int32_t Length() const override;
  /// The text of the last SetFormat, or "nothing prepared".
  [[nodiscard]] std::string FormatDescription() const override { return description_; }
  base::Result Close() override;
  void Release() override { held_ = false; }

  [[nodiscard]] bool IsOpen() const { return open_; }
  /// Whether the newest file is kept from other processes.
  [[nodiscard]] bool IsHeld() const { return held_; }

  /// While set, Create fails with -1 and leaves no file.
  bool FailCreate = false;
  /// While set, the file takes no more; it takes no more afterwards either, but the next one does.
  bool FailWrites = false;
  /// "SetFormatWAV 44100 2 16", "Create PATH", "Close" and so on; blocks are kept in Written instead.
  std::vector<std::string> Calls;
  /// The parameters of the last SetFormat for MP3.
  platform::Mp3Parameters Mp3;
  /// Every file made so far, the newest last.
  std::vector<File> Written;

 private:
  MemoryFiles* files_;
  platform::PcmFormat format_;
  std::string description_ = "nothing prepared";
  bool open_ = false;
  bool held_ = false;
  bool failed_ = false;
};

}  // namespace kestrune::test
