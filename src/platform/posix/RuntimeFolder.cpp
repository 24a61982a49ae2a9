#include "platform/posix/RuntimeFolder.h"

#include <cstdlib>

#include <fmt/format.h>
#include <unistd.h>

namespace kestrune::platform {

std::string RuntimeFolderPath(std::string_view profileFolder) {
  if (!profileFolder.empty()) return fmt::format("{}/run", profileFolder);
  const char* variable = std::getenv("XDG_RUNTIME_DIR");
  std::string_view session = variable == nullptr ? "" : variable;
  while (session.size() > 1 && session.ends_with('/')) session.remove_suffix(1);
  // The desktop's conventions ignore a folder that does not begin at the root.
  if (!session.starts_with('/')) return fmt::format("/tmp/kestrune-{}", ::geteuid());
  return fmt::format("{}/kestrune", session);
}

}  // namespace kestrune::platform
