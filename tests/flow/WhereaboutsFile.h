#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "platform/CaptureFile.h"
#include "support/MemoryFiles.h"

namespace kestrune::test {

/// Which seconds of a long run have been captured, and into which captures. Each sample tells the second in which
/// it sounded.
class Whereabouts {
 public:
  /// Sounds in that second of the steady clock; loud enough not to be silence, and never at full scale.
  [[nodiscard]] static std::int16_t SampleOf(std::int64_t second) {
    return static_cast<std::int16_t>(kLeast + second % kSpan);
  }
  /// The second, at most some hours before `now`; negative for silence.
  [[nodiscard]] static std::int64_t SecondOf(std::int16_t sample, std::int64_t now) {
    if (sample < kLeast) return -1;
    return now - ((now - (sample - kLeast)) % kSpan + kSpan) % kSpan;
  }

  struct Range {
    std::int64_t From = 0;
    std::int64_t To = 0;  ///< included
  };
  /// By the number of the capture.
  std::vector<std::vector<Range>> Captures;

  void Take(std::size_t capture, std::int64_t second) {
    if (second < 0) return;
    std::vector<Range>& ranges = Captures.at(capture);
    if (!ranges.empty() && second >= ranges.back().From && second <= ranges.back().To + 1) {
      ranges.back().To = std::max(ranges.back().To, second);
    } else {
      ranges.push_back({second, second});
    }
  }

 private:
  static constexpr std::int16_t kLeast = 8000;
  static constexpr std::int64_t kSpan = 20000;
};

/// A capture file that keeps no sound, but the seconds of it. On disk it says which capture it is. It takes no more
/// while the disk is full.
class WhereaboutsFile final : public platform::CaptureFile {
 public:
  static constexpr std::string_view kText = "capture ";

  WhereaboutsFile(Whereabouts& whereabouts, MemoryFiles& files, std::function<std::int64_t()> second)
      : whereabouts_(whereabouts), files_(files), second_(std::move(second)) {}

  void SetFormat(const platform::CaptureFormat& format) override {
    if (std::holds_alternative<platform::WavFormat>(format)) format_ = platform::FormatValues(format);
  }
  platform::NumberedResult Create(std::string_view path) override {
    static_cast<void>(Close());
    ++Tries;
    platform::NumberedResult created = files_.CreateHeld(path);
    if (!created) return created;
    const std::size_t number = whereabouts_.Captures.size();
    files_.Put(path, std::string(kText) + std::to_string(number));
    whereabouts_.Captures.emplace_back();
    open_ = true;
    number_ = number;
    samples_ = 0;
    return {};
  }
  [[nodiscard]] platform::PcmFormat FormatValues() const override { return format_; }
  base::Result WriteBlock(std::span<const std::int16_t> samples) override {
    if (!open_) return base::Result::Failed("no file is open");
    if (files_.DiskFull) return base::Result::Failed("No space left on device");
    if (samples.empty()) return base::Result::Done();
    const std::int64_t now = second_();
    // A block is a tenth of a second: the middle of it says enough.
    whereabouts_.Take(number_, Whereabouts::SecondOf(samples[samples.size() / 2], now));
    samples_ += static_cast<std::int64_t>(samples.size());
    return base::Result::Done();
  }
  [[nodiscard]] std::int32_t Length() const override {
    return static_cast<std::int32_t>(samples_ * 1000 / format_.SampleRate / format_.Channels);
  }
  [[nodiscard]] std::string FormatDescription() const override { return "seconds"; }
  base::Result Close() override {
    open_ = false;
    return base::Result::Done();
  }
  void Release() override {}

  int Tries = 0;  ///< to create a file

 private:
  Whereabouts& whereabouts_;
  MemoryFiles& files_;
  std::function<std::int64_t()> second_;
  platform::PcmFormat format_{.SampleRate = 1000, .Channels = 1};
  bool open_ = false;
  std::size_t number_ = 0;
  std::int64_t samples_ = 0;
};

}  // namespace kestrune::test
