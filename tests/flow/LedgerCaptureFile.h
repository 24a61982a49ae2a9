#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <variant>
#include <vector>

#include "platform/CaptureFile.h"
#include "platform/Files.h"

namespace kestrune::test {

/// What all captures of a run have received of a sound whose mono samples count up by one.
struct CutLedger {
  std::int64_t Samples = 0;
  std::int64_t Captures = 0;
  std::int64_t Breaks = 0;  ///< places where a sample does not follow the one before it
  bool Begun = false;
  std::int16_t Last = 0;
  int Open = 0;  ///< files open at the moment
  int MostOpen = 0;
  /// The channel that the radio really plays at this moment.
  std::function<int()> TrueChannel = [] { return 0; };

  void Take(std::int16_t sample) {
    if (Begun && sample != static_cast<std::int16_t>(Last + 1)) ++Breaks;
    Begun = true;
    Last = sample;
    ++Samples;
  }
};

/// A capture file that keeps no sound, only what the ledger wants to know. On disk it says whether it is whole, and
/// then which channel was heard for most of it.
class LedgerCaptureFile final : public platform::CaptureFile {
 public:
  static constexpr std::string_view kOpenText = "being written";
  static constexpr std::string_view kWholeText = "whole, of channel ";

  LedgerCaptureFile(CutLedger& ledger, platform::Files& files) : ledger_(ledger), files_(files) {}
  ~LedgerCaptureFile() override { static_cast<void>(Close()); }

  /// Only a WAV format changes the shape of what is counted.
  void SetFormat(const platform::CaptureFormat& format) override {
    if (std::holds_alternative<platform::WavFormat>(format)) format_ = platform::FormatValues(format);
  }
  platform::NumberedResult Create(std::string_view path) override;
  [[nodiscard]] platform::PcmFormat FormatValues() const override { return format_; }
  base::Result WriteBlock(std::span<const std::int16_t> samples) override;
  [[nodiscard]] std::int32_t Length() const override {
    return static_cast<std::int32_t>(samples_ * 1000 / format_.SampleRate);
  }
  [[nodiscard]] std::string FormatDescription() const override { return "counted samples"; }
  base::Result Close() override;
  void Release() override {}

 private:
  CutLedger& ledger_;
  platform::Files& files_;
  platform::PcmFormat format_{.SampleRate = 1000, .Channels = 1};
  std::string path_;
  std::int64_t samples_ = 0;
  std::map<int, std::int64_t> samplesOfChannel_;
};

}  // namespace kestrune::test
