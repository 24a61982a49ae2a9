#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include <fmt/format.h>

#include "platform/Processes.h"

namespace kestrune::test {

/// Programs that are only noted. The first has the number 4711, each further one the next.
class FakeProcesses final : public platform::Processes {
 public:
  [[nodiscard]] std::int32_t Start(std::string_view commandLine, bool hidden) override {
    Calls.push_back(fmt::format("{} {}", hidden ? "hidden" : "normal", commandLine));
    return Starts ? next_++ : 0;
  }
  [[nodiscard]] platform::WaitEnd Wait(std::int32_t processId, std::uint32_t timeoutMs) override {
    Calls.push_back(fmt::format("wait {} {}", processId, timeoutMs));
    During();
    return End;
  }
  void StopWaiting() override { Calls.emplace_back("stop waiting"); }

  bool Starts = true;
  platform::WaitEnd End = platform::WaitEnd::Ended;
  std::function<void()> During = [] {};  ///< happens while a wait runs
  std::vector<std::string> Calls;

 private:
  std::int32_t next_ = 4711;
};

}  // namespace kestrune::test
