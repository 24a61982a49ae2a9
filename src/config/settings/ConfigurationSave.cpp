#include "config/settings/ConfigurationSave.h"

#include <algorithm>

#include "base/Text.h"

namespace kestrune::config {

std::string CleanFilenameFormat(std::string_view text) {
  constexpr std::string_view kForbidden = "|<>^+=?\":;*$@";
  std::string clean(base::Trim(text));
  std::replace(clean.begin(), clean.end(), '/', '\\');
  std::erase_if(clean, [&](char c) { return kForbidden.find(c) != std::string_view::npos; });

  // Blanks are trimmed only behind a backslash that went: one that a blank hides at this point stays.
  std::string_view rest = clean;
  while (rest.starts_with('\\')) rest = base::Trim(rest.substr(1));
  while (rest.ends_with('\\')) rest = base::Trim(rest.substr(0, rest.size() - 1));
  return std::string(base::Trim(rest));
}

}  // namespace kestrune::config
