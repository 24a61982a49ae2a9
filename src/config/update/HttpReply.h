#pragma once

#include <string>
#include <string_view>

namespace kestrune::config {

/// What follows the first empty line of a server's reply; a reply without one is taken whole. A reply that begins
/// with a status line other than 200 has no body.
[[nodiscard]] std::string BodyOf(std::string_view reply);

}  // namespace kestrune::config
