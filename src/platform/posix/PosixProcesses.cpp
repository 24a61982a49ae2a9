#include "platform/posix/PosixProcesses.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <string>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "base/Words.h"

namespace kestrune::platform {
namespace {

constexpr std::chrono::milliseconds kPause{20};

/// What a child does with its standard files before it becomes the program.
class FileActions {
 public:
  explicit FileActions(bool hidden) {
    ::posix_spawn_file_actions_init(&actions_);
    Open(STDIN_FILENO, O_RDONLY);
    if (!hidden) return;
    Open(STDOUT_FILENO, O_WRONLY);
    Open(STDERR_FILENO, O_WRONLY);
  }
  ~FileActions() { ::posix_spawn_file_actions_destroy(&actions_); }
  FileActions(const FileActions&) = delete;
  FileActions& operator=(const FileActions&) = delete;
  [[nodiscard]] const posix_spawn_file_actions_t* Get() const { return &actions_; }

 private:
  void Open(int number, int flags) {
    ::posix_spawn_file_actions_addopen(&actions_, number, "/dev/null", flags, 0);
  }
  posix_spawn_file_actions_t actions_{};
};

/// A child begins with no signal blocked or ignored, whatever holds in this program.
class Attributes {
 public:
  Attributes() {
    sigset_t signals;
    ::posix_spawnattr_init(&attributes_);
    ::sigemptyset(&signals);
    ::posix_spawnattr_setsigmask(&attributes_, &signals);
    ::sigfillset(&signals);
    ::posix_spawnattr_setsigdefault(&attributes_, &signals);
    ::posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
  }
  ~Attributes() { ::posix_spawnattr_destroy(&attributes_); }
  Attributes(const Attributes&) = delete;
  Attributes& operator=(const Attributes&) = delete;
  [[nodiscard]] const posix_spawnattr_t* Get() const { return &attributes_; }

 private:
  posix_spawnattr_t attributes_{};
};

}  // namespace

PosixProcesses::~PosixProcesses() {
  Collect();
}

std::int32_t PosixProcesses::Start(std::string_view commandLine, bool hidden) {
  Collect();
  std::vector<std::string> words = base::SplitWords(commandLine);
  if (words.empty() || commandLine.find('\0') != std::string_view::npos) return 0;
  std::vector<char*> arguments;
  arguments.reserve(words.size() + 1);
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  const FileActions files(hidden);
  const Attributes attributes;
  pid_t process = 0;
  if (::posix_spawnp(&process, arguments[0], files.Get(), attributes.Get(), arguments.data(), environ) != 0) {
    return 0;
  }
  running_.push_back(process);
  return process;
}

WaitEnd PosixProcesses::Wait(std::int32_t processId, std::uint32_t timeoutMs) {
  if (!Started(processId)) return WaitEnd::Failed;
  const std::chrono::milliseconds limit(timeoutMs);
  const auto begin = loop_.SteadyNow();
  for (;;) {
    Collect();
    if (!Started(processId)) return WaitEnd::Ended;
    if (stopped_) return WaitEnd::GivenUp;
    if (timeoutMs != 0 && loop_.SteadyNow() - begin >= limit) return WaitEnd::TimedOut;
    loop_.Sleep(kPause);
    loop_.PumpEvents();
  }
}

void PosixProcesses::Collect() {
  running_.erase(std::remove_if(running_.begin(), running_.end(),
                                [](pid_t process) { return ::waitpid(process, nullptr, WNOHANG) != 0; }),
                 running_.end());
}

bool PosixProcesses::Started(pid_t process) const {
  return std::find(running_.begin(), running_.end(), process) != running_.end();
}

}  // namespace kestrune::platform
