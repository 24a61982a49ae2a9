#include "platform/local/RuntimeFolder.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <system_error>

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/local/FileDescriptor.h"

namespace kestrune::platform {

std::string RuntimeFolder(std::string_view profile) {
  if (!profile.empty()) return fmt::format("{}/run", profile);
  const char* sessionFolder = std::getenv("XDG_RUNTIME_DIR");
  if (sessionFolder != nullptr && sessionFolder[0] == '/') return fmt::format("{}/kestrune", sessionFolder);
  return fmt::format("/tmp/kestrune-{}", ::getuid());
}

std::string EnsureRuntimeFolder(const std::string& folder) {
  const std::filesystem::path parent = std::filesystem::path(folder).parent_path();
  std::error_code error;
  if (!parent.empty()) std::filesystem::create_directories(parent, error);
  if (::mkdir(folder.c_str(), S_IRWXU) != 0 && errno != EEXIST) {
    return fmt::format("{} cannot be made: {}", folder, std::strerror(errno));
  }
  // What stands there may be someone else's, in /tmp above all, so it is opened without following a link and
  // looked at through what was opened.
  const FileDescriptor opened(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
  if (!opened.IsOpen()) return fmt::format("{} cannot be opened: {}", folder, std::strerror(errno));
  struct stat state {};
  if (::fstat(opened.Number(), &state) != 0 || state.st_uid != ::getuid()) {
    return fmt::format("{} belongs to another user", folder);
  }
  if ((state.st_mode & ALLPERMS) != S_IRWXU && ::fchmod(opened.Number(), S_IRWXU) != 0) {
    return fmt::format("{} is open to others: {}", folder, std::strerror(errno));
  }
  return {};
}

}  // namespace kestrune::platform
