#pragma once

#include <string>
#include <string_view>

#include "base/EventLoop.h"
#include "platform/Web.h"

namespace kestrune::config {

/// A minimal fetch over plain HTTP/1.0, for when the web itself gives nothing: one request to port 80, one
/// read, and what follows the first empty line of it. The address is sent in lower case. Empty if
/// the server was not reached or answered with another status than 200.
[[nodiscard]] std::string HttpGet(platform::Web& web, base::EventLoop& loop, std::string_view address);

}  // namespace kestrune::config
