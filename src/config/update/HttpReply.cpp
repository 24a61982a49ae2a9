#include "config/update/HttpReply.h"

#include <cstddef>

namespace kestrune::config {

std::string BodyOf(std::string_view reply) {
  constexpr std::string_view kEmptyLine = "\r\n\r\n";
  const std::size_t head = reply.find(kEmptyLine);
  return std::string(head == std::string_view::npos ? reply : reply.substr(head + kEmptyLine.size()));
}

}  // namespace kestrune::config
