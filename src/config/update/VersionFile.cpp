#include "config/update/VersionFile.h"

#include <algorithm>
#include <cstddef>

#include <fmt/format.h>

#include "base/Text.h"
#include "base/Version.h"

namespace kestrune::config {

VersionFile ReadVersionFile(std::string_view text) {
  std::string lines = base::ReplaceAll(base::ReplaceAll(text, "\n", "\r"), "\r\r", "\r");
  while (lines.ends_with('\r')) lines.pop_back();
  VersionFile file;
  if (const std::size_t end = lines.find('\r'); end != std::string::npos) {
    file.DownloadAddress = lines.substr(end + 1);
    lines.resize(end);
  }
  file.Version = base::Trim(lines);
  return file;
}

std::string VersionText(int major, int minor, int revision) {
  return fmt::format("{:03}.{:03}.{:03}", major, minor, revision);
}

std::string RunningVersionText() {
  return VersionText(base::kVersionMajor, base::kVersionMinor, base::kVersionRevision);
}

bool IsVersion(std::string_view text) {
  constexpr std::string_view kPattern = "000.000.000";
  return std::equal(text.begin(), text.end(), kPattern.begin(), kPattern.end(),
                    [](char c, char wanted) { return wanted == '0' ? c >= '0' && c <= '9' : c == wanted; });
}

bool IsNewer(std::string_view version, std::string_view running) {
  return version > running;
}

}  // namespace kestrune::config
