#pragma once

#include <chrono>
#include <string>
#include <utility>
#include <vector>

#include <sys/types.h>

namespace kestrune::test {

/// A program that a test runs alongside; killed at the latest when this object is destroyed.
class ChildProcess {
 public:
  using Variables = std::vector<std::pair<std::string, std::string>>;

  ChildProcess() = default;
  /// Starts `command`, found through PATH, with the environment of this process and the variables over it.
  /// What it prints goes to the end of the output file, if there is one.
  explicit ChildProcess(const std::vector<std::string>& command, const Variables& variables = {},
                        const std::string& outputFile = {});
  ~ChildProcess();
  ChildProcess(ChildProcess&& other) noexcept;
  ChildProcess& operator=(ChildProcess&& other) noexcept;

  [[nodiscard]] pid_t Id() const { return id_; }
  [[nodiscard]] bool Running();
  void Signal(int number);
  /// Waits for its end; its exit status, or -1 if it did not end in time or by a signal.
  [[nodiscard]] int Wait(std::chrono::milliseconds limit);
  void Kill();

  /// Whether PATH leads to such a program.
  [[nodiscard]] static bool Installed(const std::string& program);

 private:
  pid_t id_ = -1;
  int status_ = 0;
};

}  // namespace kestrune::test
