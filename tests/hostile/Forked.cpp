#include "hostile/Forked.h"

#include <array>
#include <csignal>
#include <cstddef>
#include <cstdlib>
#include <stdexcept>
#include <utility>

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kestrune::test {

Forked::~Forked() {
  while (!running_.empty()) static_cast<void>(Wait(true));
}

int Forked::Begin(const std::function<std::string()>& work) {
  std::array<int, 2> ends{};
  if (::pipe(ends.data()) != 0) throw std::runtime_error("no pipe");
  const pid_t id = ::fork();
  if (id < 0) throw std::runtime_error("no process");
  if (id == 0) {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    ::close(ends[0]);
    std::string report;
    try {
      report = work();
    } catch (const std::exception& failure) {
      report = std::string("complaint exception: ") + failure.what();
    }
    for (std::size_t done = 0; done < report.size();) {
      const ssize_t count = ::write(ends[1], report.data() + done, report.size() - done);
      if (count <= 0) std::_Exit(1);
      done += static_cast<std::size_t>(count);
    }
    std::_Exit(0);
  }
  ::close(ends[1]);
  running_.push_back({.Work = begun_, .Id = id, .Report = ends[0]});
  return begun_++;
}

Forked::Outcome Forked::Wait(bool kill) {
  const Process process = running_.front();
  running_.erase(running_.begin());
  if (kill) ::kill(process.Id, SIGKILL);
  Outcome outcome{.Work = process.Work, .Status = 0, .Report = {}};
  std::array<char, 4096> block{};
  for (ssize_t count = 0; (count = ::read(process.Report, block.data(), block.size())) > 0;)
    outcome.Report.append(block.data(), static_cast<std::size_t>(count));
  ::close(process.Report);
  int status = 0;
  ::waitpid(process.Id, &status, 0);
  outcome.Status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  return outcome;
}

}  // namespace kestrune::test
