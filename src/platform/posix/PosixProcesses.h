#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include <sys/types.h>

#include "base/EventLoop.h"
#include "platform/Processes.h"

namespace kestrune::platform {

/// The machine's programs, found through PATH. A program that was started has no standard input and none of this
/// program's other open files. It outlives this object.
class PosixProcesses final : public Processes {
 public:
  /// The loop must outlive this object; waits go through it.
  explicit PosixProcesses(base::EventLoop& loop) : loop_(loop) {}
  ~PosixProcesses() override;
  PosixProcesses(const PosixProcesses&) = delete;
  PosixProcesses& operator=(const PosixProcesses&) = delete;

  [[nodiscard]] std::int32_t Start(std::string_view commandLine, bool hidden) override;
  [[nodiscard]] WaitEnd Wait(std::int32_t processId, std::uint32_t timeoutMs) override;
  void StopWaiting() override { stopped_ = true; }

 private:
  /// Collects those that have ended: until then the system keeps their numbers.
  void Collect();
  [[nodiscard]] bool Started(pid_t process) const;

  base::EventLoop& loop_;
  std::vector<pid_t> running_;  ///< as far as known
  bool stopped_ = false;
};

}  // namespace kestrune::platform
