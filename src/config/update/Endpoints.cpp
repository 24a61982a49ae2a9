#include "config/update/Endpoints.h"

#include <utility>

#include "config/update/BuiltInEndpoints.h"

namespace kestrune::config {

Endpoints EndpointsOf(const platform::Environment& environment) {
  const auto chosen = [&environment](const char* name, const char* builtIn) {
    std::string value = environment.Variable(name);
    return value.empty() ? std::string(builtIn) : std::move(value);
  };
  return {.VersionFile = chosen("KESTRUNE_UPDATE_ADDRESS", kUpdateAddress),
          .WebSite = chosen("KESTRUNE_WEB_SITE", kWebSite)};
}

}  // namespace kestrune::config
