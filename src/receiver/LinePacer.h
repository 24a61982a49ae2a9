#pragma once

#include <chrono>
#include <deque>
#include <optional>
#include <string>
#include <string_view>

namespace kestrune::receiver {

/// A serial line's pace: a byte is ten bits with its start and stop bit, and has arrived when its last bit
/// has. The line carries one byte at a time, in the order of queueing.
class LinePacer {
 public:
  using Microseconds = std::chrono::microseconds;

  explicit LinePacer(int baud = 9600);

  /// The first bit goes out at `at`, or when the line is free.
  void Queue(Microseconds at, std::string_view bytes);
  /// The bytes that have arrived by now, each returned once.
  [[nodiscard]] std::string Take(Microseconds now);
  /// When the next byte will have arrived; nothing if the line is idle.
  [[nodiscard]] std::optional<Microseconds> NextByte() const;
  /// When all bytes will have arrived; in the past if the line is idle.
  [[nodiscard]] Microseconds FreeAt() const { return freeAt_; }
  void Clear() { runs_.clear(); }

 private:
  /// Bytes without a gap between them; `Taken` of them are gone.
  struct Run {
    Microseconds Start;
    std::string Bytes;
    std::size_t Taken;
  };

  [[nodiscard]] Microseconds Length(std::size_t bytes) const;

  int baud_;
  std::deque<Run> runs_;
  Microseconds freeAt_{0};
};

}  // namespace kestrune::receiver
