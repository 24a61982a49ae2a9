#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

namespace kestrune::test {

/// Processes that are copies of this one, each with a piece of work, so that none of them meets what another has left and
/// a crash ends one of them alone.
class Forked {
 public:
  struct Outcome {
    int Work = 0;        ///< as Begin numbers it
    int Status = 0;      ///< its exit status, or 128 and the signal that ended it
    std::string Report;  ///< what the work returned
  };

  ~Forked();

  /// Begins a piece of work in a process of its own and returns its number, from 0. It must not rely on other threads.
  int Begin(const std::function<std::string()>& work);
  /// How many were begun so far.
  [[nodiscard]] int Begun() const { return begun_; }
  [[nodiscard]] std::size_t Running() const { return running_.size(); }
  /// Waits for the oldest that runs, or with `kill` ends it on the spot.
  [[nodiscard]] Outcome Wait(bool kill = false);

 private:
  struct Process {
    int Work = 0;
    pid_t Id = -1;
    int Report = -1;
  };

  std::vector<Process> running_;
  int begun_ = 0;
};

}  // namespace kestrune::test
