#include <array>
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <thread>

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/local/LocalClient.h"
#include "platform/local/LocalSocket.h"
#include "platform/posix/TemporaryFolder.h"

namespace kestrune::platform {
namespace {

using test::TemporaryFolder;
using namespace std::chrono_literals;

constexpr std::chrono::seconds kLong{20};

void Await(const FileDescriptor& socket) {
  pollfd state{socket.Number(), POLLIN, 0};
  ::poll(&state, 1, 20'000);
}

/// Lets one client in, reads its line, and does with its socket what the test says.
class OneShotServer {
 public:
  using Treat = std::function<void(int socket, const std::string& line)>;

  OneShotServer(const std::string& path, Treat treat)
      : listener_(ListenLocal(path)), thread_([this, treat = std::move(treat)] {
          Await(listener_);
          const FileDescriptor client = AcceptLocal(listener_);
          std::string line;
          while (line.find('\n') == std::string::npos) {
            Await(client);
            std::array<char, 4096> block;
            const ssize_t got = ::recv(client.Number(), block.data(), block.size(), 0);
            if (got <= 0) return;
            line.append(block.data(), static_cast<std::size_t>(got));
          }
          treat(client.Number(), line);
        }) {}
  OneShotServer(const OneShotServer&) = delete;
  OneShotServer& operator=(const OneShotServer&) = delete;
  ~OneShotServer() { thread_.join(); }

 private:
  FileDescriptor listener_;
  std::thread thread_;
};

void Put(int socket, std::string_view text) {
  while (!text.empty()) {
    const ssize_t sent = ::send(socket, text.data(), text.size(), MSG_NOSIGNAL);
    if (sent > 0) {
      text.remove_prefix(static_cast<std::size_t>(sent));
    } else if (errno != EAGAIN) {
      return;
    } else {
      pollfd state{socket, POLLOUT, 0};
      if (::poll(&state, 1, 20'000) <= 0) return;
    }
  }
}

TEST(LocalClient, ALineGoesAndALineComesBack) {
  const TemporaryFolder folder;
  const OneShotServer server(folder.Path() + "/s", [](int socket, const std::string& line) {
    EXPECT_EQ(line, "hello\n");
    Put(socket, "wor");
    Put(socket, "ld\nmore\n");
  });
  const AskResult result = Ask(folder.Path() + "/s", "hello", kLong);
  EXPECT_EQ(result.Outcome, AskOutcome::Answered);
  EXPECT_EQ(result.Answer, "world");
}

TEST(LocalClient, LongLinesGoBothWays) {
  const TemporaryFolder folder;
  const std::string question(2'000'000, 'q');
  const std::string answer(3'000'000, 'a');
  const OneShotServer server(folder.Path() + "/s", [&](int socket, const std::string& line) {
    EXPECT_EQ(line.size(), question.size() + 1);
    Put(socket, answer + '\n');
  });
  EXPECT_EQ(Ask(folder.Path() + "/s", question, kLong).Answer, answer);
}

TEST(LocalClient, APathLongerThanAnAddressIsReached) {
  const TemporaryFolder folder;
  const std::string deep = folder.Path() + '/' + std::string(120, 'd');
  std::filesystem::create_directory(deep);
  const OneShotServer server(deep + "/s", [](int socket, const std::string&) { Put(socket, "here\n"); });
  EXPECT_EQ(Ask(deep + "/s", "x", kLong).Answer, "here");
}

TEST(LocalClient, NobodyListensWhereNothingIs) {
  const TemporaryFolder folder;
  EXPECT_EQ(Ask(folder.Path() + "/s", "x", kLong).Outcome, AskOutcome::NobodyListens);
  EXPECT_EQ(Ask(folder.Path() + "/no/s", "x", kLong).Outcome, AskOutcome::NobodyListens);
  EXPECT_EQ(Ask(folder.Path() + '/' + std::string(200, 'd') + "/s", "x", kLong).Outcome,
            AskOutcome::NobodyListens);
}

TEST(LocalClient, NobodyListensOnADeadSocketOrAFile) {
  const TemporaryFolder folder;
  { const FileDescriptor dead = ListenLocal(folder.Path() + "/dead"); }
  std::ofstream(folder.Path() + "/file").put('x');
  EXPECT_EQ(Ask(folder.Path() + "/dead", "x", kLong).Outcome, AskOutcome::NobodyListens);
  EXPECT_EQ(Ask(folder.Path() + "/file", "x", kLong).Outcome, AskOutcome::NobodyListens);
}

TEST(LocalClient, AConnectionThatEndsEarlyIsNoAnswer) {
  const TemporaryFolder folder;
  const OneShotServer server(folder.Path() + "/s",
                             [](int socket, const std::string&) { Put(socket, "no end"); });
  EXPECT_EQ(Ask(folder.Path() + "/s", "x", kLong).Outcome, AskOutcome::NoAnswer);
}

TEST(LocalClient, OneThatListensAndSaysNothingIsNoAnswer) {
  const TemporaryFolder folder;
  const FileDescriptor silent = ListenLocal(folder.Path() + "/s");
  ASSERT_TRUE(silent.IsOpen());
  EXPECT_EQ(Ask(folder.Path() + "/s", "x", 50ms).Outcome, AskOutcome::NoAnswer);
  EXPECT_EQ(Ask(folder.Path() + "/s", std::string(3'000'000, 'x'), 50ms).Outcome, AskOutcome::NoAnswer);
}

TEST(LocalClient, AnAnswerWithoutEndIsNoAnswer) {
  const TemporaryFolder folder;
  const OneShotServer server(folder.Path() + "/s", [](int socket, const std::string&) {
    const std::string block(1'000'000, 'x');
    for (int i = 0; i < 20; ++i) Put(socket, block);
  });
  EXPECT_EQ(Ask(folder.Path() + "/s", "x", kLong).Outcome, AskOutcome::NoAnswer);
}

TEST(LocalClient, TheSocketIsTheUsersAlone) {
  const TemporaryFolder folder;
  const FileDescriptor listener = ListenLocal(folder.Path() + "/s");
  ASSERT_TRUE(listener.IsOpen());
  struct stat state {};
  ASSERT_EQ(::stat((folder.Path() + "/s").c_str(), &state), 0);
  EXPECT_EQ(state.st_mode & 0777U, 0600U);
  EXPECT_FALSE(ListenLocal(folder.Path() + "/s").IsOpen());
}

}  // namespace
}  // namespace kestrune::platform
