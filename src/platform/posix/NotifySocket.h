#pragma once

#include <string>

#include "platform/ServiceManager.h"

namespace kestrune::platform {

/// The service manager behind the socket that the variable NOTIFY_SOCKET names, as systemd has it: a datagram with a line
/// for each thing that is told. The protocol is that small and promised to stay, so that no library is needed.
class NotifySocket final : public ServiceManager {
 public:
  /// Takes NOTIFY_SOCKET, WATCHDOG_USEC and WATCHDOG_PID out of the environment, so that no program that this one starts
  /// speaks in its name. A path, or a name behind "@".
  NotifySocket();
  ~NotifySocket() override;
  NotifySocket(const NotifySocket&) = delete;
  NotifySocket& operator=(const NotifySocket&) = delete;

  [[nodiscard]] bool Listens() const override { return socket_ >= 0; }
  [[nodiscard]] std::chrono::milliseconds Patience() const override { return patience_; }
  [[nodiscard]] bool Tell(const News& news) override;

 private:
  std::string address_;
  int socket_ = -1;
  std::chrono::milliseconds patience_{0};
};

}  // namespace kestrune::platform
