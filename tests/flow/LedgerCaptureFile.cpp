#include "flow/LedgerCaptureFile.h"

#include <algorithm>

namespace kestrune::test {

void LedgerCaptureFile::Create(std::string_view path) {
  Close();
  lastResult_ = files_.Replace(path, kOpenText) ? std::int16_t{0} : std::int16_t{-1};
  if (lastResult_ < 0) return;
  path_ = path;
  samples_ = 0;
  ++ledger_.Captures;
  ++ledger_.Open;
  ledger_.MostOpen = std::max(ledger_.MostOpen, ledger_.Open);
}

bool LedgerCaptureFile::WriteBlock(std::span<const std::int16_t> samples) {
  if (path_.empty()) return false;
  for (const std::int16_t sample : samples) ledger_.Take(sample);
  samples_ += static_cast<std::int64_t>(samples.size());
  return true;
}

void LedgerCaptureFile::Close() {
  if (path_.empty()) return;
  static_cast<void>(files_.Replace(path_, kWholeText));
  path_.clear();
  --ledger_.Open;
}

}  // namespace kestrune::test
