#include "flow/LedgerCaptureFile.h"

#include <algorithm>

namespace kestrune::test {

platform::NumberedResult LedgerCaptureFile::Create(std::string_view path) {
  static_cast<void>(Close());
  const base::Result created = files_.Replace(path, kOpenText);
  if (!created) return {.Number = -1, .Cause = created.Cause()};
  path_ = path;
  samples_ = 0;
  samplesOfChannel_.clear();
  ++ledger_.Captures;
  ++ledger_.Open;
  ledger_.MostOpen = std::max(ledger_.MostOpen, ledger_.Open);
  return {};
}

base::Result LedgerCaptureFile::WriteBlock(std::span<const std::int16_t> samples) {
  if (path_.empty()) return base::Result::Failed("no file is open");
  for (const std::int16_t sample : samples) ledger_.Take(sample);
  samples_ += static_cast<std::int64_t>(samples.size());
  samplesOfChannel_[ledger_.TrueChannel()] += static_cast<std::int64_t>(samples.size());
  return base::Result::Done();
}

base::Result LedgerCaptureFile::Close() {
  if (path_.empty()) return base::Result::Done();
  const auto most =
      std::max_element(samplesOfChannel_.begin(), samplesOfChannel_.end(),
                       [](const auto& one, const auto& other) { return one.second < other.second; });
  const int channel = most == samplesOfChannel_.end() ? 0 : most->first;
  base::Result closed = files_.Replace(path_, std::string(kWholeText) + std::to_string(channel));
  path_.clear();
  --ledger_.Open;
  return closed;
}

}  // namespace kestrune::test
