#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace kestrune::platform {

/// A plain connection to a server. Each call that waits serves events meanwhile and waits no longer than the
/// time given; after a failure the others fail too.
class Socket {
 public:
  virtual ~Socket() = default;

  /// `timeout` holds for this call and for each one after it.
  [[nodiscard]] virtual bool Connect(std::string_view hostName, std::uint16_t remotePort,
                                     std::chrono::milliseconds timeout) = 0;
  [[nodiscard]] virtual bool Write(std::string_view text) = 0;
  /// What has come by now, or, if nothing has, what comes first; never more than `atMost` bytes. Empty at the
  /// end, after a failure and when the time has run out.
  [[nodiscard]] virtual std::string Read(std::size_t atMost) = 0;
  virtual void Disconnect() = 0;
};

/// The web. The main thread calls; every fetch serves events until it ends, and ends within a bounded time.
class Web {
 public:
  virtual ~Web() = default;

  /// The body at an address of the web (http or https). Empty if it did not arrive whole, or if the server's status
  /// was not 200. For texts of a few lines.
  [[nodiscard]] virtual std::string FetchText(std::string_view address) = 0;
  /// The same for a large file.
  [[nodiscard]] virtual std::string FetchBytes(std::string_view address) = 0;
  [[nodiscard]] virtual std::unique_ptr<Socket> MakeSocket() = 0;

  /// This program is about to end: whatever waits returns, and so does every later call, at once and with
  /// nothing.
  virtual void StopWaiting() = 0;
};

}  // namespace kestrune::platform
