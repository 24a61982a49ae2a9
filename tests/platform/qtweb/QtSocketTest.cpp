#include <QTimer>
#include <memory>
#include <utility>

#include <gtest/gtest.h>

#include "WebApplication.h"
#include "config/update/HttpGet.h"
#include "platform/qtweb/QtWeb.h"
#include "support/LoopbackServer.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;
using platform::QtWeb;

/// A web whose every host and port is one server of the test's.
class WebOfOneServer final : public platform::Web {
 public:
  explicit WebOfOneServer(std::uint16_t port) : port_(port) {}
  [[nodiscard]] std::string FetchText(std::string_view address) override { return web_.FetchText(address); }
  [[nodiscard]] std::string FetchBytes(std::string_view address) override { return web_.FetchBytes(address); }
  [[nodiscard]] std::unique_ptr<platform::Socket> MakeSocket() override {
    return std::make_unique<MovedSocket>(web_.MakeSocket(), port_);
  }
  void StopWaiting() override { web_.StopWaiting(); }

 private:
  class MovedSocket final : public platform::Socket {
   public:
    MovedSocket(std::unique_ptr<platform::Socket> socket, std::uint16_t port)
        : socket_(std::move(socket)), port_(port) {}
    [[nodiscard]] bool Connect(std::string_view, std::uint16_t, std::chrono::milliseconds timeout) override {
      return socket_->Connect("127.0.0.1", port_, std::min(timeout, std::chrono::milliseconds(700)));
    }
    [[nodiscard]] bool Write(std::string_view text) override { return socket_->Write(text); }
    [[nodiscard]] std::string Read(std::size_t atMost) override { return socket_->Read(atMost); }
    void Disconnect() override { socket_->Disconnect(); }

   private:
    std::unique_ptr<platform::Socket> socket_;
    std::uint16_t port_;
  };

  QtWeb web_;
  std::uint16_t port_;
};

class QtSocketTest : public ::testing::Test {
 protected:
  [[nodiscard]] std::string Get(const LoopbackServer& server) {
    WebOfOneServer web(server.Port());
    return config::HttpGet(web, loop, "http://Updates.Invalid/NewVersion.txt");
  }

  QCoreApplication& application = WebApplication();
  platform::QtEventLoop loop;
};

TEST_F(QtSocketTest, TheRequestReachesTheServerByteForByte) {
  LoopbackServer server(
      {{{{"HTTP/1.0 200 OK\r\nContent-Type: text/plain\r\n\r\n003.000.030\r\nhttp://h/a\r\n"}}}});
  EXPECT_EQ(Get(server), "003.000.030\r\nhttp://h/a\r\n");
  ASSERT_EQ(server.Requests().size(), 1U);
  EXPECT_EQ(server.Requests()[0],
            "GET /newversion.txt HTTP/1.0\r\nHost: updates.invalid\r\nAccept: text/*\r\n\r\n");
}

TEST_F(QtSocketTest, AReplyInPiecesIsCutAtTheFirst) {
  LoopbackServer server({{{{"HTTP/1.0 200 OK\r\n\r\n003."}, {"000.030", 500ms}}}});
  EXPECT_EQ(Get(server), "003.");
}

TEST_F(QtSocketTest, AReplyWithoutAnEmptyLineIsTheBody) {
  LoopbackServer server({{{{"003.000.030\r\n"}}}});
  EXPECT_EQ(Get(server), "003.000.030\r\n");
}

TEST_F(QtSocketTest, ThePromisedLengthIsNotLookedAt) {
  LoopbackServer server({{{{"HTTP/1.0 200 OK\r\nContent-Length: 9999999\r\n\r\n003"}}}});
  EXPECT_EQ(Get(server), "003");
}

TEST_F(QtSocketTest, ASilentServerIsGivenUp) {
  LoopbackServer server({{{}, Ending::KeptOpen}});
  const Stopwatch watch;
  EXPECT_EQ(Get(server), "");
  EXPECT_GE(watch.Passed(), 600ms);
  EXPECT_LT(watch.Passed(), 6s);
}

TEST_F(QtSocketTest, AServerThatClosesWithoutAWordGivesNothing) {
  LoopbackServer server({Answer{}});
  const Stopwatch watch;
  EXPECT_EQ(Get(server), "");
  EXPECT_LT(watch.Passed(), 600ms) << "the time need not run out";
}

TEST_F(QtSocketTest, AServerThatBreaksOffGivesNothing) {
  LoopbackServer server({{{}, Ending::Reset}});
  EXPECT_EQ(Get(server), "");
}

TEST_F(QtSocketTest, AHugeReplyIsReadOnceAndNoFurther) {
  LoopbackServer server({{{{"HTTP/1.0 200 OK\r\n\r\n"}, {std::string(1000000, 'x')}}, Ending::Closed, 1000}});
  EXPECT_LE(Get(server).size(), 32767U);
}

TEST_F(QtSocketTest, WhereNobodyListensNothingConnects) {
  std::uint16_t port = 0;
  {
    const LoopbackServer gone({Answer{}});
    port = gone.Port();
  }
  QtWeb web;
  const auto socket = web.MakeSocket();
  EXPECT_FALSE(socket->Connect("127.0.0.1", port, 5s));
  EXPECT_FALSE(socket->Write("x"));
  EXPECT_EQ(socket->Read(10), "");
  EXPECT_FALSE(socket->Connect("", 80, 5s));
}

TEST_F(QtSocketTest, NeverMoreIsReadThanAskedForAndTheRestStays) {
  LoopbackServer server({{{{"abcdef"}}, Ending::KeptOpen}});
  QtWeb web;
  const auto socket = web.MakeSocket();
  ASSERT_TRUE(socket->Connect("127.0.0.1", server.Port(), 5s));
  ASSERT_TRUE(socket->Write("\r\n\r\n"));
  EXPECT_EQ(socket->Read(2), "ab");
  EXPECT_EQ(socket->Read(9), "cdef");
}

TEST_F(QtSocketTest, StoppingEndsAReadUnderWay) {
  LoopbackServer server({{{}, Ending::KeptOpen}});
  QtWeb web;
  const auto socket = web.MakeSocket();
  ASSERT_TRUE(socket->Connect("127.0.0.1", server.Port(), 30s));
  QTimer::singleShot(50, [&] { web.StopWaiting(); });
  const Stopwatch watch;
  EXPECT_EQ(socket->Read(10), "");
  EXPECT_LT(watch.Passed(), 6s);
}

}  // namespace
}  // namespace kestrune::test
