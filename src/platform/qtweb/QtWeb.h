#pragma once

#include <chrono>
#include <cstddef>
#include <string>

#include "platform/Web.h"
#include "platform/qtweb/Waits.h"

namespace kestrune::platform {

/// How long a fetch may take and how much it may bring; one that goes over gives nothing.
struct WebLimits {
  std::chrono::milliseconds Silence{10000};     ///< between two arrivals
  std::chrono::milliseconds Text{10000};        ///< a text in all
  std::chrono::milliseconds Bytes{30 * 60000};  ///< a file in all
  std::size_t TextSize = 65536;
  std::size_t BytesSize = 256UL << 20U;
};

/// The web through Qt's own client: http and https, at most five redirections, none of them from an encrypted
/// address to an open one. Certificates are checked, and there is no way round that. Waits run the program's
/// loop, and end early when that loop is told to quit. Sockets must not outlive it.
class QtWeb final : public Web {
 public:
  explicit QtWeb(WebLimits limits = {});

  [[nodiscard]] std::string FetchText(std::string_view address) override;
  [[nodiscard]] std::string FetchBytes(std::string_view address) override;
  [[nodiscard]] std::unique_ptr<Socket> MakeSocket() override;
  void StopWaiting() override { waits_.End(); }

 private:
  [[nodiscard]] std::string Fetch(std::string_view address, std::chrono::milliseconds limit,
                                  std::size_t mostBytes);

  WebLimits limits_;
  Waits waits_;
};

}  // namespace kestrune::platform
