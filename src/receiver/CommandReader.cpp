#include "receiver/CommandReader.h"

#include <algorithm>
#include <cstdint>

namespace kestrune::receiver {
namespace {

constexpr std::string_view kHeader = "\x5A\xA5";
constexpr std::size_t kBeforePayload = 4;
constexpr std::size_t kTrailer = 2;
// No command comes near this; a greater length is noise that looked like a header.
constexpr std::size_t kLongestPayload = 64;

}  // namespace

void CommandReader::Skip(std::size_t count) {
  buffer_.erase(0, count);
  skippedBytes_ += static_cast<int>(count);
}

std::vector<Command> CommandReader::Feed(std::string_view bytes) {
  buffer_.append(bytes);
  std::vector<Command> commands;
  for (;;) {
    const std::size_t header = buffer_.find(kHeader);
    if (header == std::string::npos) {
      const bool half = !buffer_.empty() && buffer_.back() == kHeader[0];
      Skip(buffer_.size() - (half ? 1 : 0));
      return commands;
    }
    Skip(header);
    if (buffer_.size() < kBeforePayload) return commands;
    const std::size_t length =
        static_cast<std::uint8_t>(buffer_[2]) * std::size_t{256} + static_cast<std::uint8_t>(buffer_[3]);
    if (length == 0 || length > kLongestPayload) {
      Skip(kHeader.size());
      continue;
    }
    const std::size_t whole = kBeforePayload + length + kTrailer;
    if (buffer_.size() < whole) return commands;
    commands.push_back(
        {buffer_.substr(kBeforePayload, length), buffer_.substr(kBeforePayload + length, kTrailer)});
    buffer_.erase(0, whole);
  }
}

}  // namespace kestrune::receiver
