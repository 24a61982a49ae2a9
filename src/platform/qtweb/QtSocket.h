#pragma once

#include <QEventLoop>
#include <QTcpSocket>
#include <chrono>

#include "platform/Web.h"
#include "platform/qtweb/Waits.h"

namespace kestrune::platform {

/// A TCP connection. Its waits run the program's loop, and end early when that loop is told to quit.
class QtSocket final : public Socket {
 public:
  /// The waits must outlive the socket.
  explicit QtSocket(Waits& waits);

  [[nodiscard]] bool Connect(std::string_view hostName, std::uint16_t remotePort,
                             std::chrono::milliseconds timeout) override;
  [[nodiscard]] bool Write(std::string_view text) override;
  [[nodiscard]] std::string Read(std::size_t atMost) override;
  void Disconnect() override { socket_.abort(); }

 private:
  Waits& waits_;
  QEventLoop change_;
  QTcpSocket socket_;
  std::chrono::milliseconds timeout_{0};
};

}  // namespace kestrune::platform
