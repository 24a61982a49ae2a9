#include "platform/posix/FileNames.h"

#include <cstddef>

#include <fmt/format.h>
#include <sys/stat.h>

#include "base/Ignored.h"
#include "base/Text.h"

namespace kestrune::platform {

namespace {

bool IsFolder(const std::string& path) {
  struct stat status {};
  return ::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

/// Bytes of the first character.
std::size_t FirstCharacter(std::string_view text) {
  std::size_t length = 1;
  while (length < text.size() && (static_cast<unsigned char>(text[length]) & 0xC0U) == 0x80U) ++length;
  return length;
}

}  // namespace

std::optional<std::string> SystemPath(std::string_view path) {
  if (path.find('\0') != std::string_view::npos) return std::nullopt;
  return std::string(path);
}

std::string FileNameFor(std::string_view text) {
  std::string name;
  for (const char c : base::ToLower(text)) {
    const bool plain = (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-' || c == '_';
    if (plain) {
      name += c;
    } else {
      name += fmt::format("%{:02x}", static_cast<unsigned char>(c));
    }
  }
  return name;
}

std::string FolderOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  if (slash == std::string::npos) return ".";
  return slash == 0 ? "/" : path.substr(0, slash);
}

bool MakeFolders(const std::string& path, mode_t mode) {
  for (std::size_t at = path.find('/', 1); at != std::string::npos; at = path.find('/', at + 1)) {
    // A parent that exists already is no failure, and one that cannot be made shows at the end.
    base::Ignored(::mkdir(path.substr(0, at).c_str(), mode));
  }
  return ::mkdir(path.c_str(), mode) == 0 || IsFolder(path);
}

bool MatchesPattern(std::string_view name, std::string_view pattern) {
  // On a mismatch the last "*" takes one character more; those before it need no second try.
  std::optional<std::string_view> patternBehindStar;
  std::string_view nameAtStar;
  while (!name.empty() || !pattern.empty()) {
    if (!pattern.empty() && pattern.front() == '*') {
      pattern.remove_prefix(1);
      patternBehindStar = pattern;
      nameAtStar = name;
    } else if (!pattern.empty() && !name.empty() && pattern.front() == '?') {
      pattern.remove_prefix(1);
      name.remove_prefix(FirstCharacter(name));
    } else if (!pattern.empty() && !name.empty() && pattern.front() == name.front()) {
      pattern.remove_prefix(1);
      name.remove_prefix(1);
    } else if (patternBehindStar && !nameAtStar.empty()) {
      nameAtStar.remove_prefix(FirstCharacter(nameAtStar));
      name = nameAtStar;
      pattern = *patternBehindStar;
    } else {
      return false;
    }
  }
  return true;
}

}  // namespace kestrune::platform
