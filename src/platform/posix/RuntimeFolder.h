#pragma once

#include <string>
#include <string_view>

namespace kestrune::platform {

/// The folder of the sockets and locks of running units: "run" in the profile's folder if there is a profile, else
/// "kestrune" in the session's runtime folder, else one in /tmp with the user's number. Creates and reads nothing, so
/// that a client can ask where to look.
[[nodiscard]] std::string RuntimeFolderPath(std::string_view profileFolder);

}  // namespace kestrune::platform
