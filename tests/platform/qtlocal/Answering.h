#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <utility>

#include "platform/qtlocal/LocalControlSocket.h"

namespace kestrune::test {

/// Replies to each line at once, with what the function gives.
inline platform::LocalControlSocket::Answer Answering(std::function<std::string(std::string_view)> answer) {
  return
      [answer = std::move(answer)](std::string_view line, const platform::LocalControlSocket::Reply& reply) {
        reply(answer(line));
      };
}

}  // namespace kestrune::test
