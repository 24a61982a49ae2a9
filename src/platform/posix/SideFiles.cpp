#include "platform/posix/SideFiles.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cstdlib>

#include <fmt/format.h>
#include <sys/stat.h>

namespace kestrune::platform {

namespace {

/// The path of a plain file without "..", links and doubled separators; empty if there is none.
std::string RealFile(const std::string& path) {
  std::array<char, PATH_MAX> real{};
  struct stat status {};
  if (::realpath(path.c_str(), real.data()) == nullptr || ::stat(real.data(), &status) != 0) return {};
  return S_ISREG(status.st_mode) ? real.data() : std::string();
}

}  // namespace

// The build knows the relative path between the two folders of an installation.
const std::string_view kSharedFolder = KESTRUNE_SHARED_FOLDER;

std::string SideFile(std::string_view executableFolder, std::string_view name,
                     std::string_view sharedFolder) {
  std::string relative(name);
  std::replace(relative.begin(), relative.end(), '\\', '/');
  relative.erase(0, relative.find_first_not_of('/'));
  std::string beside = fmt::format("{}/{}", executableFolder, relative);
  std::string found = RealFile(beside);
  if (found.empty()) found = RealFile(fmt::format("{}/{}/{}", executableFolder, sharedFolder, relative));
  return found.empty() ? beside : found;
}

}  // namespace kestrune::platform
