#include "config/update/HttpReply.h"

#include <cstddef>

namespace kestrune::config {

namespace {

/// "HTTP/1.1 404 Not Found", say. A reply without a status line is taken for what was asked for.
bool Refuses(std::string_view reply) {
  if (!reply.starts_with("HTTP/")) return false;
  const std::string_view line = reply.substr(0, reply.find('\r'));
  const std::size_t blank = line.find(' ');
  if (blank == std::string_view::npos) return true;
  const std::string_view status = line.substr(blank + 1);
  return status.substr(0, status.find(' ')) != "200";
}

}  // namespace

std::string BodyOf(std::string_view reply) {
  if (Refuses(reply)) return {};
  constexpr std::string_view kEmptyLine = "\r\n\r\n";
  const std::size_t head = reply.find(kEmptyLine);
  return std::string(head == std::string_view::npos ? reply : reply.substr(head + kEmptyLine.size()));
}

}  // namespace kestrune::config
