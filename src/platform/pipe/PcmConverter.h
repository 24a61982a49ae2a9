#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "platform/PcmFormat.h"

namespace kestrune::platform {

/// Brings a stream of samples from one form into another.
///
/// 1. Equal forms pass bit for bit. The same holds for the channels alone: mono is the average of the two, towards
///    zero; stereo holds the one channel twice.
/// 2. Another rate is made by a band-limited filter without dither; its output comes with the filter's delay, some
///    milliseconds, and its length is the input's times the ratio.
class PcmConverter {
 public:
  PcmConverter(const PcmFormat& from, const PcmFormat& to);
  ~PcmConverter();
  PcmConverter(const PcmConverter&) = delete;
  PcmConverter& operator=(const PcmConverter&) = delete;

  /// Empty, or why it cannot convert.
  [[nodiscard]] const std::string& Error() const { return error_; }
  /// Whole frames; the result is valid until the next call, and may be empty.
  [[nodiscard]] std::span<const std::int16_t> Convert(std::span<const std::int16_t> samples);

 private:
  [[nodiscard]] std::span<const std::int16_t> ConvertChannels(std::span<const std::int16_t> samples);

  struct Resampler;
  const PcmFormat from_;
  const PcmFormat to_;
  std::string error_;
  std::unique_ptr<Resampler> resampler_;
  std::vector<std::int16_t> mixed_;
  std::vector<std::int16_t> resampled_;
};

}  // namespace kestrune::platform
