#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace kestrune::schedule {

/// Calls `visit` with each line of a file's text, without its end ("\n" or "\r\n"); a last line without an end is
/// one too. Logs grow without limit, so their lines are never all held at once.
template <typename Visit>
void EachLine(std::string_view text, Visit visit) {
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    if (end < text.size() && line.ends_with('\r')) line.remove_suffix(1);
    visit(line);
    text.remove_prefix(std::min(end + 1, text.size()));
  }
}

}  // namespace kestrune::schedule
