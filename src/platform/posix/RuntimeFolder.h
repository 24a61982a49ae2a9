#pragma once

#include <string>
#include <string_view>

namespace kestrune::platform {

/// Where sockets and locks of running units lie: the folder run of a profile's folder if one is given, else
/// the folder kestrune in the session's runtime folder, else one in /tmp under the user's number. Makes
/// nothing and looks at nothing, so that a client can ask where to look.
[[nodiscard]] std::string RuntimeFolderPath(std::string_view profileFolder);

}  // namespace kestrune::platform
