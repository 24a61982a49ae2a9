#include "support/ChildProcess.h"

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <thread>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kestrune::test {

ChildProcess::ChildProcess(const std::vector<std::string>& command, const Variables& variables,
                           const std::string& outputFile) {
  std::vector<std::string> environment;
  for (char** variable = environ; *variable != nullptr; ++variable) {
    const std::string text = *variable;
    const std::string name = text.substr(0, text.find('='));
    bool replaced = false;
    for (const auto& [other, value] : variables) replaced = replaced || other == name;
    if (!replaced) environment.push_back(text);
  }
  for (const auto& [name, value] : variables)
    environment.push_back(std::string(name).append("=").append(value));

  std::vector<std::string> words = command;
  std::vector<char*> arguments;
  arguments.reserve(words.size() + 1);
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  std::vector<char*> settings;
  settings.reserve(environment.size() + 1);
  for (std::string& setting : environment) settings.push_back(setting.data());
  settings.push_back(nullptr);

  posix_spawn_file_actions_t files;
  posix_spawn_file_actions_init(&files);
  const std::string output = outputFile.empty() ? "/dev/null" : outputFile;
  posix_spawn_file_actions_addopen(&files, 0, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&files, 1, output.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
  posix_spawn_file_actions_adddup2(&files, 1, 2);
  if (posix_spawnp(&id_, arguments[0], &files, nullptr, arguments.data(), settings.data()) != 0) id_ = -1;
  posix_spawn_file_actions_destroy(&files);
}

ChildProcess::~ChildProcess() {
  Kill();
}

ChildProcess::ChildProcess(ChildProcess&& other) noexcept
    : id_(std::exchange(other.id_, -1)), status_(other.status_) {}

ChildProcess& ChildProcess::operator=(ChildProcess&& other) noexcept {
  if (this == &other) return *this;
  Kill();
  id_ = std::exchange(other.id_, -1);
  status_ = other.status_;
  return *this;
}

bool ChildProcess::Running() {
  if (id_ < 0) return false;
  if (waitpid(id_, &status_, WNOHANG) == 0) return true;
  id_ = -1;
  return false;
}

void ChildProcess::Signal(int number) {
  if (id_ > 0) kill(id_, number);
}

int ChildProcess::Wait(std::chrono::milliseconds limit) {
  const auto end = std::chrono::steady_clock::now() + limit;
  while (Running()) {
    if (std::chrono::steady_clock::now() > end) return -1;
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  return WIFEXITED(status_) ? WEXITSTATUS(status_) : -1;
}

void ChildProcess::Kill() {
  if (!Running()) return;
  kill(id_, SIGKILL);
  waitpid(id_, &status_, 0);
  id_ = -1;
}

bool ChildProcess::Installed(const std::string& program) {
  const char* path = std::getenv("PATH");
  std::istringstream folders(path != nullptr ? path : "");
  for (std::string folder; std::getline(folders, folder, ':');) {
    if (access((std::filesystem::path(folder) / program).c_str(), X_OK) == 0) return true;
  }
  return false;
}

}  // namespace kestrune::test
