#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace kestrune::radio {

/// Frames that wait for the radio to answer the one before, oldest first; at most ten. The queue is a part of the
/// design that is switched off: in the program nothing enters it. See RadioSession::HoldCommands.
class HoldingQueue {
 public:
  [[nodiscard]] std::int16_t Count() const { return static_cast<std::int16_t>(count_); }
  [[nodiscard]] bool Full() const { return count_ == slots_.size(); }
  void Clear() { count_ = 0; }

  /// The queue must not be full.
  void Push(std::string_view frame) { slots_.at(count_++) = frame; }
  /// Takes the oldest frame out; the queue must not be empty.
  [[nodiscard]] std::string Pop();

 private:
  std::array<std::string, 10> slots_;
  std::size_t count_ = 0;
};

}  // namespace kestrune::radio
