#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "receiver/CommandRules.h"

namespace kestrune::receiver {

/// Cuts the bytes that come from the program into commands: 5A A5, a big-endian length, the payload, two
/// bytes of trailer. What is not a frame is skipped and counted.
class CommandReader {
 public:
  /// The commands that these bytes complete, in order.
  [[nodiscard]] std::vector<Command> Feed(std::string_view bytes);

  [[nodiscard]] int SkippedBytes() const { return skippedBytes_; }

 private:
  void Skip(std::size_t count);

  std::string buffer_;
  int skippedBytes_ = 0;
};

}  // namespace kestrune::receiver
