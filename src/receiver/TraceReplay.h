#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrune::receiver {

/// The received lines of a trace file ("<seconds since midnight> < <bytes in hex>"), to be sent again at
/// the same intervals. Midnight may fall between two lines.
class TraceReplay {
 public:
  /// Lines of other kinds are skipped; the first line with a time is moment 0.
  explicit TraceReplay(std::string_view trace);

  /// The frames that are due, each returned once, in order.
  [[nodiscard]] std::vector<std::string> Take(std::chrono::milliseconds sinceStart);
  /// When the next frame is due, counted from moment 0; nothing after the last one.
  [[nodiscard]] std::optional<std::chrono::milliseconds> Next() const;
  [[nodiscard]] std::size_t Frames() const { return entries_.size(); }

 private:
  struct Entry {
    std::chrono::milliseconds At;
    std::string Bytes;
  };
  std::vector<Entry> entries_;
  std::size_t next_ = 0;
};

}  // namespace kestrune::receiver
