#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "Answering.h"
#include "control/ControlServer.h"
#include "platform/local/LocalSocket.h"
#include "platform/posix/TemporaryFolder.h"
#include "platform/qtlocal/LocalControlSocket.h"
#include "support/FakeControlTarget.h"
#include "support/Pump.h"

namespace kestrune::platform {
namespace {

using test::Answering;
using test::PumpUntil;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

/// The other end, driven by hand and never blocking.
class TestClient {
 public:
  explicit TestClient(const std::string& path) : socket_(ConnectLocal(path)) {
    EXPECT_TRUE(socket_.IsOpen()) << path;
  }

  /// What the system takes now.
  std::size_t Put(std::string_view text) {
    std::size_t sent = 0;
    while (sent < text.size()) {
      const ssize_t more = ::send(socket_.Number(), text.data() + sent, text.size() - sent, MSG_NOSIGNAL);
      if (more <= 0) break;
      sent += static_cast<std::size_t>(more);
    }
    return sent;
  }

  void EndPutting() { ::shutdown(socket_.Number(), SHUT_WR); }

  /// All that came until now.
  const std::string& Got() {
    std::array<char, 65536> block;
    ssize_t more = 0;
    while ((more = ::recv(socket_.Number(), block.data(), block.size(), 0)) > 0) {
      got_.append(block.data(), static_cast<std::size_t>(more));
      lines_ += static_cast<std::size_t>(std::count(block.begin(), block.begin() + more, '\n'));
    }
    if (more == 0 || (errno != EAGAIN && errno != EWOULDBLOCK)) shownOut_ = true;
    return got_;
  }

  bool ShownOut() {
    Got();
    return shownOut_;
  }

  /// Serves events until so many lines have come, and gives them.
  std::string Await(std::size_t lines) {
    EXPECT_TRUE(PumpUntil([&] {
      Got();
      return lines_ >= lines;
    })) << "got: "
        << got_.substr(0, 200);
    return got_;
  }

 private:
  FileDescriptor socket_;
  std::string got_;
  std::size_t lines_ = 0;
  bool shownOut_ = false;
};

class LocalControlSocketTest : public ::testing::Test {
 protected:
  LocalControlSocketTest() {
    test::Application();
    std::filesystem::create_directory(folder_ / "run");
  }

  [[nodiscard]] std::string Path() const { return folder_.Path() + "/run/kestrune.sock"; }

  /// A server that notes each line and answers with it after "re ".
  std::unique_ptr<LocalControlSocket> Serve() {
    return std::make_unique<LocalControlSocket>(Path(), Answering([this](std::string_view line) {
                                                  lines_.emplace_back(line);
                                                  return "re " + std::string(line);
                                                }));
  }

  test::TemporaryFolder folder_;
  std::vector<std::string> lines_;
};

TEST_F(LocalControlSocketTest, ALineIsAnswered) {
  const auto server = Serve();
  ASSERT_EQ(server->Status(), LocalControlSocket::State::Listening) << server->Reason();
  EXPECT_EQ(server->Reason(), "");
  TestClient client(Path());
  client.Put("hello\n");
  EXPECT_EQ(client.Await(1), "re hello\n");
}

TEST_F(LocalControlSocketTest, TheSocketIsTheUsersAlone) {
  const auto server = Serve();
  EXPECT_EQ(test::FileMode(Path()), 0600U);
}

TEST_F(LocalControlSocketTest, PartsOfALineAreJoined) {
  const auto server = Serve();
  TestClient client(Path());
  for (const char* part : {"h", "el", "lo", "\nwo"}) {
    client.Put(part);
    for (int i = 0; i < 5; ++i) QCoreApplication::processEvents();
  }
  EXPECT_EQ(client.Await(1), "re hello\n");
  client.Put("rld\n");
  EXPECT_EQ(client.Await(2), "re hello\nre world\n");
}

TEST_F(LocalControlSocketTest, LinesThatComeTogetherAreAnsweredInOrder) {
  const auto server = Serve();
  TestClient client(Path());
  client.Put("1\n\n3\n");
  EXPECT_EQ(client.Await(3), "re 1\nre \nre 3\n");
}

TEST_F(LocalControlSocketTest, ManyClientsAreServedAtATime) {
  const auto server = Serve();
  std::vector<std::unique_ptr<TestClient>> clients;
  for (int i = 0; i < 60; ++i) {
    clients.push_back(std::make_unique<TestClient>(Path()));
    QCoreApplication::processEvents();
  }
  for (std::size_t i = clients.size(); i-- > 0;) clients[i]->Put(std::to_string(i) + '\n');
  for (std::size_t i = 0; i < clients.size(); ++i) {
    EXPECT_EQ(clients[i]->Await(1), "re " + std::to_string(i) + '\n');
  }
}

TEST_F(LocalControlSocketTest, OneClientTooManyIsShownOutAndThePlaceIsFreeAgainLater) {
  const auto server = Serve();
  std::vector<std::unique_ptr<TestClient>> clients;
  for (int i = 0; i < 64; ++i) {
    clients.push_back(std::make_unique<TestClient>(Path()));
    clients.back()->Put("x\n");
    clients.back()->Await(1);
  }
  TestClient late(Path());
  EXPECT_TRUE(PumpUntil([&] { return late.ShownOut(); }));
  clients.pop_back();
  // The server learns of the hang-up in its own time.
  EXPECT_TRUE(PumpUntil([&] {
    TestClient again(Path());
    again.Put("y\n");
    for (int i = 0; i < 5; ++i) QCoreApplication::processEvents();
    return again.Got() == "re y\n";
  }));
}

TEST_F(LocalControlSocketTest, OneWhoEndsItsTalkStillGetsEveryAnswer) {
  const auto server = Serve();
  TestClient client(Path());
  client.Put("1\n2\nwithout end");
  client.EndPutting();
  EXPECT_TRUE(PumpUntil([&] { return client.ShownOut(); }));
  EXPECT_EQ(client.Got(), "re 1\nre 2\n");
  EXPECT_THAT(lines_, ElementsAre("1", "2"));
}

TEST_F(LocalControlSocketTest, RubbishWithoutLineEndIsCutAt64KiB) {
  test::FakeControlTarget target;
  const LocalControlSocket server(Path(), [&](std::string_view line, const LocalControlSocket::Reply& reply) {
    control::Dispatch(target, line, reply);
  });
  TestClient client(Path());
  const std::string rubbish(300'000, 'x');
  std::size_t sent = 0;
  EXPECT_TRUE(PumpUntil([&] {
    sent += client.Put(std::string_view(rubbish).substr(sent));
    return client.ShownOut();
  }));
  EXPECT_EQ(client.Got(),
            "{\"exit\":2,\"reason\":\"the request is longer than 65536 bytes\",\"result\":null}\n");
  EXPECT_TRUE(target.Calls.empty());

  TestClient next(Path());
  next.Put("{\"command\":\"stop\"}\n");
  EXPECT_EQ(next.Await(1), "{\"exit\":0,\"reason\":\"\",\"result\":null}\n");
}

TEST_F(LocalControlSocketTest, OneWhoDoesNotFetchIsNotReadFurther) {
  int answered = 0;
  const std::string big(200'000, 'b');
  const LocalControlSocket server(Path(), Answering([&](std::string_view line) {
                                    ++answered;
                                    return std::string(line) + big;
                                  }));
  TestClient slow(Path());
  std::string questions;
  for (int i = 100; i < 200; ++i) questions += std::to_string(i) + '\n';
  ASSERT_EQ(slow.Put(questions), questions.size());
  for (int i = 0; i < 200; ++i) QCoreApplication::processEvents();
  // 1 MiB waits with the server, and a few answers more in the system's own buffers.
  EXPECT_GE(answered, 5);
  EXPECT_LE(answered, 20);

  // Others are not held up by it.
  TestClient other(Path());
  other.Put("o\n");
  EXPECT_EQ(other.Await(1), "o" + big + '\n');

  const std::string all = slow.Await(100);
  EXPECT_EQ(all.size(), 100 * (3 + big.size() + 1));
  for (std::size_t i = 0; i < 100; ++i) {
    EXPECT_EQ(all.substr(i * (3 + big.size() + 1), 3), std::to_string(100 + i));
  }
}

TEST_F(LocalControlSocketTest, OneWhoGoesWithoutFetchingDoesNoHarm) {
  std::string big(5'000'000, 'b');
  int answered = 0;
  const LocalControlSocket server(Path(), Answering([&](std::string_view) {
                                    ++answered;
                                    return big;
                                  }));
  {
    TestClient client(Path());
    client.Put("x\n");
    EXPECT_TRUE(PumpUntil([&] { return answered == 1; }));
  }
  for (int i = 0; i < 10; ++i) QCoreApplication::processEvents();
  TestClient next(Path());
  next.Put("x\n");
  EXPECT_EQ(next.Await(1).size(), big.size() + 1);
}

TEST_F(LocalControlSocketTest, OtherClientsAreAnsweredInsideAnAnswerThatWaits) {
  std::unique_ptr<TestClient> first;
  std::unique_ptr<TestClient> second;
  std::vector<std::string> order;
  const LocalControlSocket server(Path(), Answering([&](std::string_view line) {
                                    order.push_back("begin " + std::string(line));
                                    if (line == "wait") {
                                      second->Put("quick\n");
                                      EXPECT_EQ(second->Await(1), "re quick\n");
                                    }
                                    order.push_back("end " + std::string(line));
                                    return "re " + std::string(line);
                                  }));
  first = std::make_unique<TestClient>(Path());
  second = std::make_unique<TestClient>(Path());
  // The line after the waiting one waits too.
  first->Put("wait\nafter\n");
  EXPECT_EQ(first->Await(2), "re wait\nre after\n");
  EXPECT_THAT(order,
              ElementsAre("begin wait", "begin quick", "end quick", "end wait", "begin after", "end after"));
}

TEST_F(LocalControlSocketTest, OneWhoGoesDuringItsOwnAnswerDoesNoHarm) {
  std::unique_ptr<TestClient> client;
  bool answered = false;
  const LocalControlSocket server(Path(), Answering([&](std::string_view) {
                                    client.reset();
                                    for (int i = 0; i < 10; ++i) QCoreApplication::processEvents();
                                    answered = true;
                                    return std::string("late");
                                  }));
  client = std::make_unique<TestClient>(Path());
  client->Put("x\ny\n");
  EXPECT_TRUE(PumpUntil([&] { return answered; }));
  for (int i = 0; i < 10; ++i) QCoreApplication::processEvents();
}

/// A server that keeps the replies for the test to give.
struct KeptReplies {
  std::vector<LocalControlSocket::Reply> Replies;
  [[nodiscard]] LocalControlSocket::Answer Answer() {
    return [this](std::string_view /*line*/, const LocalControlSocket::Reply& reply) {
      Replies.push_back(reply);
    };
  }
};

TEST_F(LocalControlSocketTest, AReplyThatComesLaterGoesOut) {
  KeptReplies kept;
  const LocalControlSocket server(Path(), kept.Answer());
  TestClient client(Path());
  client.Put("x\n");
  ASSERT_TRUE(PumpUntil([&] { return kept.Replies.size() == 1; }));
  EXPECT_EQ(client.Got(), "");
  kept.Replies[0]("late");
  EXPECT_EQ(client.Await(1), "late\n");
}

TEST_F(LocalControlSocketTest, AClientsNextLineWaitsForTheReplyToTheOneBefore) {
  KeptReplies kept;
  const LocalControlSocket server(Path(), kept.Answer());
  TestClient client(Path());
  client.Put("x\ny\n");
  ASSERT_TRUE(PumpUntil([&] { return !kept.Replies.empty(); }));
  for (int i = 0; i < 10; ++i) QCoreApplication::processEvents();
  ASSERT_EQ(kept.Replies.size(), 1U);
  kept.Replies[0]("first");
  ASSERT_TRUE(PumpUntil([&] { return kept.Replies.size() == 2; }));
  kept.Replies[1]("second");
  EXPECT_EQ(client.Await(2), "first\nsecond\n");
}

TEST_F(LocalControlSocketTest, OtherClientsAreServedWhileAReplyIsStillToCome) {
  KeptReplies kept;
  const LocalControlSocket server(Path(), kept.Answer());
  TestClient patient(Path());
  patient.Put("x\n");
  ASSERT_TRUE(PumpUntil([&] { return kept.Replies.size() == 1; }));
  TestClient other(Path());
  other.Put("y\n");
  ASSERT_TRUE(PumpUntil([&] { return kept.Replies.size() == 2; }));
  kept.Replies[1]("second");
  EXPECT_EQ(other.Await(1), "second\n");
  EXPECT_EQ(patient.Got(), "");
}

TEST_F(LocalControlSocketTest, OnlyTheFirstReplyToALineCounts) {
  KeptReplies kept;
  const LocalControlSocket server(Path(), kept.Answer());
  TestClient client(Path());
  client.Put("x\ny\n");
  ASSERT_TRUE(PumpUntil([&] { return kept.Replies.size() == 1; }));
  kept.Replies[0]("first");
  ASSERT_TRUE(PumpUntil([&] { return kept.Replies.size() == 2; }));
  kept.Replies[0]("again");
  kept.Replies[1]("second");
  EXPECT_EQ(client.Await(2), "first\nsecond\n");
}

TEST_F(LocalControlSocketTest, AReplyToOneWhoHasGoneComesToNothing) {
  KeptReplies kept;
  {
    const LocalControlSocket server(Path(), kept.Answer());
    {
      TestClient client(Path());
      client.Put("x\n");
      ASSERT_TRUE(PumpUntil([&] { return kept.Replies.size() == 1; }));
    }
    for (int i = 0; i < 10; ++i) QCoreApplication::processEvents();
    kept.Replies[0]("late");
    // Its place is another's now, and the reply is not.
    TestClient next(Path());
    next.Put("y\n");
    ASSERT_TRUE(PumpUntil([&] { return kept.Replies.size() == 2; }));
    kept.Replies[0]("later");
    EXPECT_EQ(next.Got(), "");
  }
  kept.Replies[1]("after the end of the server");
}

TEST_F(LocalControlSocketTest, OneWhoEndsItsTalkStillGetsAReplyThatComesLater) {
  KeptReplies kept;
  const LocalControlSocket server(Path(), kept.Answer());
  TestClient client(Path());
  client.Put("x\n");
  client.EndPutting();
  ASSERT_TRUE(PumpUntil([&] { return kept.Replies.size() == 1; }));
  for (int i = 0; i < 10; ++i) QCoreApplication::processEvents();
  kept.Replies[0]("late");
  EXPECT_EQ(client.Await(1), "late\n");
}

TEST_F(LocalControlSocketTest, ASecondOneOnTheSamePathIsTold) {
  auto first = Serve();
  {
    const auto second = Serve();
    EXPECT_EQ(second->Status(), LocalControlSocket::State::AnotherListens);
    EXPECT_THAT(second->Reason(), HasSubstr("another process listens on"));
  }
  TestClient client(Path());
  client.Put("still\n");
  EXPECT_EQ(client.Await(1), "re still\n");

  first.reset();
  EXPECT_FALSE(std::filesystem::exists(Path()));
  EXPECT_EQ(Serve()->Status(), LocalControlSocket::State::Listening);
}

TEST_F(LocalControlSocketTest, WhatAKilledProcessLeftIsReplaced) {
  int ready[2];
  ASSERT_EQ(::pipe(ready), 0);
  const pid_t child = ::fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    const auto server = Serve();
    const char listens = server->Status() == LocalControlSocket::State::Listening ? 'y' : 'n';
    if (::write(ready[1], &listens, 1) != 1) ::_exit(1);
    while (true) ::pause();
  }
  char listens = 0;
  ASSERT_EQ(::read(ready[0], &listens, 1), 1);
  EXPECT_EQ(listens, 'y');
  EXPECT_EQ(Serve()->Status(), LocalControlSocket::State::AnotherListens);
  ASSERT_EQ(::kill(child, SIGKILL), 0);
  ASSERT_EQ(::waitpid(child, nullptr, 0), child);
  ::close(ready[0]);
  ::close(ready[1]);

  EXPECT_TRUE(std::filesystem::exists(Path()));
  const auto server = Serve();
  EXPECT_EQ(server->Status(), LocalControlSocket::State::Listening) << server->Reason();
  TestClient client(Path());
  client.Put("here\n");
  EXPECT_EQ(client.Await(1), "re here\n");
}

TEST_F(LocalControlSocketTest, AnotherUsersProcessIsShownOutUnheard) {
  if (::getuid() != 0) GTEST_SKIP() << "only root can play another user";
  const auto server = Serve();
  // Even where the modes would let it through.
  ASSERT_EQ(::chmod(folder_.Path().c_str(), 0755), 0);
  ASSERT_EQ(::chmod((folder_.Path() + "/run").c_str(), 0755), 0);
  ASSERT_EQ(::chmod(Path().c_str(), 0666), 0);
  const pid_t child = ::fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    if (::setuid(65534) != 0) ::_exit(3);
    const FileDescriptor socket = ConnectLocal(Path());
    if (!socket.IsOpen()) ::_exit(4);
    if (::send(socket.Number(), "hello\n", 6, MSG_NOSIGNAL) < 0 && errno != EPIPE) ::_exit(5);
    for (int i = 0; i < 2000; ++i) {
      char byte = 0;
      const ssize_t got = ::recv(socket.Number(), &byte, 1, 0);
      if (got > 0) ::_exit(6);
      if (got == 0 || errno == ECONNRESET) ::_exit(0);
      ::usleep(10'000);
    }
    ::_exit(7);
  }
  int status = -1;
  EXPECT_TRUE(PumpUntil([&] { return ::waitpid(child, &status, WNOHANG) == child; }));
  EXPECT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 0);
  EXPECT_TRUE(lines_.empty());
}

TEST_F(LocalControlSocketTest, OneWhoComesWhileNoFileIsFreeIsLetInLater) {
#if defined(__has_feature)
#if __has_feature(address_sanitizer)
  GTEST_SKIP() << "the sanitizer opens files of its own to look at memory, and takes their lack for an error";
#endif
#endif
  const auto server = Serve();
  TestClient client(Path());
  client.Put("x\n");
  rlimit limit{};
  ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &limit), 0);
  const rlimit few{128, limit.rlim_max};
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &few), 0);
  std::vector<FileDescriptor> taken;
  for (FileDescriptor one(::dup(0)); one.IsOpen(); one = FileDescriptor(::dup(0))) {
    taken.push_back(std::move(one));
  }
  for (int i = 0; i < 50; ++i) QCoreApplication::processEvents();
  EXPECT_TRUE(lines_.empty());

  taken.clear();
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &limit), 0);
  EXPECT_EQ(client.Await(1), "re x\n");
}

TEST_F(LocalControlSocketTest, APathLongerThanAnAddressIsServed) {
  const std::string path = folder_.Path() + '/' + std::string(150, 'd') + "/kestrune.sock";
  std::filesystem::create_directory(folder_ / std::string(150, 'd'));
  const LocalControlSocket server(path, Answering([](std::string_view) { return std::string("far"); }));
  ASSERT_EQ(server.Status(), LocalControlSocket::State::Listening) << server.Reason();
  TestClient client(path);
  client.Put("x\n");
  EXPECT_EQ(client.Await(1), "far\n");
}

TEST_F(LocalControlSocketTest, APlaceWhereItCannotListenIsNamed) {
  std::filesystem::remove(folder_ / "run");
  const auto server = Serve();
  EXPECT_EQ(server->Status(), LocalControlSocket::State::Failed);
  EXPECT_EQ(server->Reason(), Path() + " cannot be listened on: No such file or directory");
}

}  // namespace
}  // namespace kestrune::platform
