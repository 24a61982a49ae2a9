#include "flow/LedgerCaptureFile.h"

#include <algorithm>

namespace kestrune::test {

void LedgerCaptureFile::Create(std::string_view path) {
  Close();
  lastResult_ = files_.Replace(path, kOpenText) ? std::int16_t{0} : std::int16_t{-1};
  if (lastResult_ < 0) return;
  path_ = path;
  samples_ = 0;
  samplesOfChannel_.clear();
  ++ledger_.Captures;
  ++ledger_.Open;
  ledger_.MostOpen = std::max(ledger_.MostOpen, ledger_.Open);
}

bool LedgerCaptureFile::WriteBlock(std::span<const std::int16_t> samples) {
  if (path_.empty()) return false;
  for (const std::int16_t sample : samples) ledger_.Take(sample);
  samples_ += static_cast<std::int64_t>(samples.size());
  samplesOfChannel_[ledger_.TrueChannel()] += static_cast<std::int64_t>(samples.size());
  return true;
}

void LedgerCaptureFile::Close() {
  if (path_.empty()) return;
  const auto most =
      std::max_element(samplesOfChannel_.begin(), samplesOfChannel_.end(),
                       [](const auto& one, const auto& other) { return one.second < other.second; });
  const int channel = most == samplesOfChannel_.end() ? 0 : most->first;
  static_cast<void>(files_.Replace(path_, std::string(kWholeText) + std::to_string(channel)));
  path_.clear();
  --ledger_.Open;
}

}  // namespace kestrune::test
