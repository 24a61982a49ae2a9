#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>

namespace kestrune::radio {

/// Under which numbers a device that went away may come back: its own, and those that had no device while it was
/// there. A device that was there all along is another one, and is left alone unless `SuspectAll` says otherwise.
class PortRoster {
 public:
  static constexpr std::int16_t kPorts = 16;

  /// `exists` tells whether a port from 1 to 16 has a device now.
  explicit PortRoster(std::function<bool(std::int16_t port)> exists) : exists_(std::move(exists)) {}

  /// The device is at this number, and those that are there beside it are others. To be repeated now and then while
  /// it is in use.
  void Remember(std::int16_t port);
  /// To be called often while the device is away: a number without a device is free for it from then on.
  void Look();
  /// Numbers may have changed hands unseen: the device may be behind any of them.
  void SuspectAll() { others_.fill(false); }

  /// The number to try next, 0 if no candidate has a device: its own first, then each in turn.
  [[nodiscard]] std::int16_t Next();

 private:
  [[nodiscard]] bool IsOther(std::int16_t port) const {
    return others_.at(static_cast<std::size_t>(port - 1));
  }

  std::function<bool(std::int16_t port)> exists_;
  std::array<bool, kPorts> others_{};  // ports whose device is another one
  std::int16_t own_ = 0;
  std::int16_t last_ = 0;  // tried last; 0: none yet
};

}  // namespace kestrune::radio
