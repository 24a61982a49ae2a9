#include "config/update/HttpGet.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "base/Ignored.h"
#include "base/Text.h"
#include "config/update/HttpReply.h"

namespace kestrune::config {
namespace {

constexpr std::uint16_t kPort = 80;
constexpr std::chrono::milliseconds kTimeout{10000};
constexpr std::size_t kMostCharacters = 32767;

struct Place {
  std::string Host;
  std::string Path;  ///< with its "/"; empty if the address has none
};

Place PlaceOf(std::string_view address) {
  constexpr std::string_view kScheme = "http://";
  std::string rest = base::ToLower(address);
  rest = base::Trim(rest);
  if (rest.starts_with(kScheme)) rest.erase(0, kScheme.size());
  const std::size_t slash = rest.find('/');
  if (slash == std::string::npos) return {.Host = rest, .Path = ""};
  return {.Host = rest.substr(0, slash), .Path = rest.substr(slash)};
}

std::string RequestFor(const Place& place) {
  return "GET " + place.Path + " HTTP/1.0\r\nHost: " + place.Host + "\r\nAccept: text/*\r\n\r\n";
}

void WriteByLines(platform::Socket& socket, std::string_view request) {
  constexpr std::string_view kLineEnd = "\r\n";
  while (!request.empty()) {
    const std::size_t length = request.find(kLineEnd) + kLineEnd.size();
    base::Ignored(socket.Write(request.substr(0, length)));
    request.remove_prefix(length);
  }
}

}  // namespace

std::string HttpGet(platform::Web& web, base::EventLoop& loop, std::string_view address) {
  const Place place = PlaceOf(address);
  const std::unique_ptr<platform::Socket> socket = web.MakeSocket();
  if (!socket->Connect(place.Host, kPort, kTimeout)) return {};
  WriteByLines(*socket, RequestFor(place));
  loop.PumpEvents();
  const std::string reply = socket->Read(kMostCharacters);
  socket->Disconnect();
  return BodyOf(reply);
}

}  // namespace kestrune::config
