#include "real/Process.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <filesystem>
#include <stdexcept>
#include <thread>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "real/Waiting.h"

namespace kestrune::test {
namespace {

std::string Find(const std::string& program) {
  if (program.find('/') != std::string::npos) return program;
  const std::string built = std::string(KESTRUNE_PROGRAMS) + "/" + program;
  return std::filesystem::exists(built) ? built : program;
}

std::vector<char*> Pointers(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  pointers.reserve(texts.size() + 1);
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

std::vector<std::string> EnvironmentWith(const std::map<std::string, std::string>& added) {
  std::vector<std::string> all;
  for (char** variable = environ; *variable != nullptr; ++variable) {
    const std::string text = *variable;
    if (added.count(text.substr(0, text.find('='))) == 0) all.push_back(text);
  }
  for (const auto& [name, value] : added) all.push_back(std::string(name).append("=").append(value));
  return all;
}

std::string Everything(int file) {
  std::string text;
  std::array<char, 65536> block{};
  ssize_t got = 0;
  while ((got = ::pread(file, block.data(), block.size(), static_cast<off_t>(text.size()))) > 0) {
    text.append(block.data(), static_cast<std::size_t>(got));
  }
  return text;
}

}  // namespace

Process::Process(const Command& command)
    : output_(::memfd_create("output", MFD_CLOEXEC)), errors_(::memfd_create("errors", MFD_CLOEXEC)) {
  std::vector<std::string> words{Find(command.Program)};
  words.insert(words.end(), command.Arguments.begin(), command.Arguments.end());
  std::vector<std::string> variables = EnvironmentWith(command.Environment);
  const std::vector<char*> arguments = Pointers(words);
  const std::vector<char*> environment = Pointers(variables);
  std::array<int, 2> failure{};
  if (::pipe2(failure.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe");

  id_ = ::fork();
  if (id_ == 0) {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    ::dup2(::open("/dev/null", O_RDONLY), STDIN_FILENO);
    ::dup2(output_, STDOUT_FILENO);
    ::dup2(errors_, STDERR_FILENO);
    ::execvpe(arguments.front(), arguments.data(), environment.data());
    const int error = errno;
    [[maybe_unused]] const ssize_t told = ::write(failure[1], &error, sizeof error);
    ::_exit(127);
  }
  ::close(failure[1]);
  int error = 0;
  const bool failed = ::read(failure[0], &error, sizeof error) > 0;
  ::close(failure[0]);
  if (id_ < 0 || failed) {
    if (id_ > 0) ::waitpid(id_, nullptr, 0);
    throw std::runtime_error("cannot run " + words.front());
  }
}

Process::~Process() {
  if (Running()) {
    Signal(SIGKILL);
    ::waitpid(id_, nullptr, 0);
  }
  ::close(output_);
  ::close(errors_);
}

void Process::Look() {
  if (status_) return;
  int state = 0;
  if (::waitpid(id_, &state, WNOHANG) != id_) return;
  status_ = WIFSIGNALED(state) ? 128 + WTERMSIG(state) : WEXITSTATUS(state);
}

bool Process::Running() {
  Look();
  return !status_;
}

void Process::Signal(int number) {
  if (Running()) ::kill(id_, number);
}

std::optional<int> Process::Wait(std::chrono::milliseconds patience) {
  static_cast<void>(WaitUntil(
      patience, [this] { return !Running(); }, 10ms));
  return status_;
}

std::string Process::Output() const {
  return Everything(output_);
}

std::string Process::Errors() const {
  return Everything(errors_);
}

Outcome RunToEnd(const Command& command, std::chrono::milliseconds patience) {
  Process process(command);
  const std::optional<int> exit = process.Wait(patience);
  return {exit.value_or(-1), process.Output(), process.Errors()};
}

}  // namespace kestrune::test
