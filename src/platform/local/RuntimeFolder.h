#pragma once

#include <string>
#include <string_view>

namespace kestrune::platform {

/// Where the control sockets lie: the folder run of the profile if one is given, else the folder kestrune in
/// $XDG_RUNTIME_DIR, else /tmp/kestrune-<uid>. The folder need not exist.
[[nodiscard]] std::string RuntimeFolder(std::string_view profile);

/// Makes the folder, and its parents where they are missing, and sees to it that it is the user's alone: a
/// real folder, owned by the user, with mode 0700. Gives the reason if that cannot be had, else an empty
/// text.
[[nodiscard]] std::string EnsureRuntimeFolder(const std::string& folder);

}  // namespace kestrune::platform
