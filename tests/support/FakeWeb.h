#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "platform/Web.h"

namespace kestrune::test {

/// A web of plain fields. Every call is noted in Calls, the socket's too.
class FakeWeb final : public platform::Web {
 public:
  [[nodiscard]] std::string FetchText(std::string_view address) override {
    Calls.push_back(fmt::format("FetchText {}", address));
    During();
    return Text;
  }
  [[nodiscard]] std::string FetchBytes(std::string_view address) override {
    Calls.push_back(fmt::format("FetchBytes {}", address));
    During();
    return Bytes;
  }
  [[nodiscard]] std::unique_ptr<platform::Socket> MakeSocket() override {
    return std::make_unique<FakeSocket>(*this);
  }
  void StopWaiting() override { Calls.emplace_back("StopWaiting"); }

  std::string Text;                      ///< what FetchText gives
  std::string Bytes;                     ///< what FetchBytes gives
  bool Reachable = false;                ///< for the socket
  std::vector<std::string> Reply;        ///< what the socket's reads give, one after the other
  std::function<void()> During = [] {};  ///< happens while a fetch waits
  std::vector<std::string> Calls;
  std::string Sent;  ///< by the socket, all together

 private:
  class FakeSocket final : public platform::Socket {
   public:
    explicit FakeSocket(FakeWeb& web) : web_(web) {}
    [[nodiscard]] bool Connect(std::string_view hostName, std::uint16_t remotePort,
                               std::chrono::milliseconds timeout) override {
      web_.Calls.push_back(fmt::format("Connect {}:{} {}", hostName, remotePort, timeout.count()));
      return web_.Reachable;
    }
    [[nodiscard]] bool Write(std::string_view text) override {
      web_.Calls.push_back(fmt::format("Write {}", text.size()));
      web_.Sent += text;
      return true;
    }
    [[nodiscard]] std::string Read(std::size_t atMost) override {
      web_.Calls.push_back(fmt::format("Read {}", atMost));
      if (web_.Reply.empty()) return {};
      std::string piece = web_.Reply.front().substr(0, atMost);
      web_.Reply.erase(web_.Reply.begin());
      return piece;
    }
    void Disconnect() override { web_.Calls.emplace_back("Disconnect"); }

   private:
    FakeWeb& web_;
  };
};

}  // namespace kestrune::test
