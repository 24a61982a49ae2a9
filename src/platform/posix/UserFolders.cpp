#include "platform/posix/UserFolders.h"

#include <algorithm>
#include <utility>

#include "base/Text.h"

namespace kestrune::platform {

std::string WithoutEndSeparator(std::string path) {
  while (path.size() > 1 && path.back() == '/') path.pop_back();
  return path;
}

std::string MusicFolderIn(std::string_view list, std::string_view home) {
  constexpr std::string_view kName = "XDG_MUSIC_DIR=\"";
  constexpr std::string_view kHome = "$HOME";
  std::string folder;
  for (const std::string& line : base::Lines(list)) {
    std::string_view rest = line;
    rest.remove_prefix(std::min(rest.find_first_not_of(" \t"), rest.size()));
    if (!rest.starts_with(kName)) continue;
    rest.remove_prefix(kName.size());
    std::string value;
    if (rest.starts_with("$HOME/") || rest.starts_with("$HOME\"")) {
      value = home;
      rest.remove_prefix(kHome.size());
    }
    while (!rest.empty() && rest.front() != '"') {
      if (rest.front() == '\\' && rest.size() > 1) rest.remove_prefix(1);
      value += rest.front();
      rest.remove_prefix(1);
    }
    // A line without its closing quotation mark is ignored.
    if (!rest.empty() && value.starts_with('/')) folder = WithoutEndSeparator(std::move(value));
  }
  return folder;
}

}  // namespace kestrune::platform
