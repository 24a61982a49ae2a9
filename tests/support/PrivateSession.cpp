#include "support/PrivateSession.h"

#include <chrono>
#include <fstream>
#include <thread>

#include <sys/stat.h>

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;

constexpr auto kPatience = 20s;

template <typename Question>
bool WaitFor(Question question) {
  const auto deadline = std::chrono::steady_clock::now() + kPatience;
  while (!question()) {
    if (std::chrono::steady_clock::now() >= deadline) return false;
    std::this_thread::sleep_for(10ms);
  }
  return true;
}

}  // namespace

PrivateSession::PrivateSession() {
  if (::mkfifo((folder_ / "orders").c_str(), S_IRUSR | S_IWUSR) != 0) return;
  manager_ = ChildProcess({KESTRUNE_SESSION_MANAGER, folder_ / "orders"}, {}, folder_ / "heard");
  if (!WaitFor([this] { return Heard("ready") == 1; })) return;
  std::ifstream heard(folder_ / "heard");
  std::getline(heard, address_);
}

void PrivateSession::Tell(const std::string& word) const {
  std::ofstream(folder_ / "orders") << word << std::endl;
}

int PrivateSession::Heard(const std::string& line) const {
  std::ifstream heard(folder_ / "heard");
  int count = 0;
  for (std::string one; std::getline(heard, one);) count += one == line ? 1 : 0;
  return count;
}

bool PrivateSession::WaitToHear(const std::string& line, int times) const {
  return WaitFor([&] { return Heard(line) >= times; });
}

}  // namespace kestrune::test
