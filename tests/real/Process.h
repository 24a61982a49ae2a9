#pragma once

#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

namespace kestrune::test {

/// What is to be run. A program without "/" is one of this build, or else looked up in the path.
struct Command {
  std::string Program;
  std::vector<std::string> Arguments{};
  std::map<std::string, std::string> Environment{};  ///< beside what the test itself has
};

/// A running program. It dies with this object, and with the test.
class Process {
 public:
  /// Throws std::runtime_error if there is no such program.
  explicit Process(const Command& command);
  ~Process();
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;

  [[nodiscard]] bool Running();
  void Signal(int number);
  /// The exit status, or 128 and the signal that ended it; nothing if it still runs when the patience ends.
  [[nodiscard]] std::optional<int> Wait(std::chrono::milliseconds patience);

  /// What it has written so far.
  [[nodiscard]] std::string Output() const;
  [[nodiscard]] std::string Errors() const;

 private:
  void Look();

  pid_t id_ = -1;
  std::optional<int> status_;
  int output_ = -1;
  int errors_ = -1;
};

struct Outcome {
  int Exit = -1;  ///< -1: it did not end in time
  std::string Output;
  std::string Errors;
};

/// Runs a program to its end.
[[nodiscard]] Outcome RunToEnd(const Command& command,
                               std::chrono::milliseconds patience = std::chrono::seconds(60));

}  // namespace kestrune::test
