#pragma once

#include <string>

#include "platform/Environment.h"

namespace kestrune::config {

/// The maker's places on the web. They are no part of the program: the build is given them
/// (KESTRUNE_UPDATE_ADDRESS, KESTRUNE_WEB_SITE), and variables of the same names in the environment go before.
struct Endpoints {
  std::string VersionFile;  ///< full address of NewVersion.txt; empty: there is no server to ask
  std::string WebSite;      ///< shown to the user when a download fails
};

[[nodiscard]] Endpoints EndpointsOf(const platform::Environment& environment);

}  // namespace kestrune::config
