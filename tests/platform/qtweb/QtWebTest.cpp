#include <QTimer>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "WebApplication.h"
#include "platform/qtweb/QtWeb.h"
#include "support/LoopbackServer.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;
using platform::QtWeb;
using platform::WebLimits;
using ::testing::StartsWith;

/// Short enough for a test, long enough for a busy machine.
constexpr WebLimits kShort{
    .Silence = 600ms, .Text = 1500ms, .Bytes = 1500ms, .TextSize = 1000, .BytesSize = 100000};
/// By now every fetch must have ended.
constexpr auto kAtMost = 6s;

class QtWebTest : public ::testing::Test {
 protected:
  [[nodiscard]] std::string Text(LoopbackServer& server) { return web.FetchText(server.Address("/f.txt")); }

  QCoreApplication& application = WebApplication();
  QtWeb web{kShort};
};

TEST_F(QtWebTest, ATextComesAsItLiesOnTheServer) {
  LoopbackServer server({{{{"HTTP/1.1 200 OK\r\nContent-Length: 12\r\n\r\n003.000.030\n"}}}});
  EXPECT_EQ(Text(server), "003.000.030\n");
  ASSERT_EQ(server.Requests().size(), 1U);
  EXPECT_THAT(server.Requests()[0], StartsWith("GET /f.txt HTTP/1.1\r\n"));
}

TEST_F(QtWebTest, TheCaseOfAnAddressStays) {
  LoopbackServer server({{{{"HTTP/1.0 200 OK\r\n\r\nx"}}}});
  EXPECT_EQ(web.FetchText(server.Address("/NewVersion.txt")), "x");
  EXPECT_THAT(server.Requests()[0], StartsWith("GET /NewVersion.txt "));
}

TEST_F(QtWebTest, BytesOfAnyValueComeThrough) {
  std::string bytes;
  for (int i = 0; i < 256; ++i) bytes += static_cast<char>(i);
  LoopbackServer server({{{{"HTTP/1.0 200 OK\r\nContent-Length: 256\r\n\r\n" + bytes}}}});
  EXPECT_EQ(web.FetchBytes(server.Address("/")), bytes);
}

TEST_F(QtWebTest, AnAnswerInManyPiecesIsPutTogether) {
  LoopbackServer server({{{{"HTTP/1.1 20"},
                           {"0 OK\r\nContent-Le", 60ms},
                           {"ngth: 6\r", 60ms},
                           {"\n\r\nab", 60ms},
                           {"cd", 60ms},
                           {"ef", 60ms}}}});
  EXPECT_EQ(Text(server), "abcdef");
}

TEST_F(QtWebTest, AnAnswerShorterThanItPromisesIsNothing) {
  LoopbackServer server({{{{"HTTP/1.1 200 OK\r\nContent-Length: 500\r\n\r\n003.000.030"}}}});
  EXPECT_EQ(Text(server), "");
}

TEST_F(QtWebTest, WhatIsBehindThePromisedLengthIsNotTaken) {
  LoopbackServer server({{{{"HTTP/1.1 200 OK\r\nContent-Length: 3\r\n\r\nabcdef"}}}});
  EXPECT_EQ(Text(server), "abc");
}

TEST_F(QtWebTest, AnAnswerThatBreaksOffIsNothing) {
  LoopbackServer server({{{{"HTTP/1.1 200 OK\r\nContent-Length: 500\r\n\r\nabc"}}, Ending::Reset}});
  EXPECT_EQ(Text(server), "");
}

TEST_F(QtWebTest, AServerThatNeverAnswersIsGivenUp) {
  LoopbackServer server({{{}, Ending::KeptOpen}});
  const Stopwatch watch;
  EXPECT_EQ(Text(server), "");
  EXPECT_LT(watch.Passed(), kAtMost);
}

TEST_F(QtWebTest, AServerThatNeverEndsIsGivenUp) {
  LoopbackServer server({{{{"HTTP/1.1 200 OK\r\n\r\nx"}, {"y", 100ms}}, Ending::KeptOpen, 100000}});
  const Stopwatch watch;
  EXPECT_EQ(Text(server), "");
  EXPECT_GE(watch.Passed(), 1400ms) << "as long as something comes, it may take its time";
  EXPECT_LT(watch.Passed(), kAtMost);
}

TEST_F(QtWebTest, HeadersThatNeverEndAreGivenUp) {
  LoopbackServer server({{{{"HTTP/1.1 200 OK\r\n"}, {"X-A: b\r\n", 20ms}}, Ending::KeptOpen, 100000}});
  const Stopwatch watch;
  EXPECT_EQ(Text(server), "");
  EXPECT_LT(watch.Passed(), kAtMost);
}

TEST_F(QtWebTest, AHugeTextIsNothing) {
  LoopbackServer server({{{{"HTTP/1.1 200 OK\r\n\r\n"}, {std::string(1000000, 'x')}}, Ending::Closed, 1000}});
  const Stopwatch watch;
  EXPECT_EQ(Text(server), "");
  EXPECT_LT(watch.Passed(), kAtMost);
}

TEST_F(QtWebTest, TheLargestTextIsTakenAndOneByteMoreIsNot) {
  const auto answer = [](std::size_t size) {
    return Answer{{{"HTTP/1.0 200 OK\r\n\r\n" + std::string(size, 'x')}}};
  };
  LoopbackServer server({answer(1000), answer(1001)});
  EXPECT_EQ(Text(server).size(), 1000U);
  EXPECT_EQ(Text(server).size(), 0U);
}

TEST_F(QtWebTest, OnlyStatus200Counts) {
  LoopbackServer server({{{{"HTTP/1.1 404 Not Found\r\nContent-Length: 9\r\n\r\nNot Found"}}},
                         {{{"HTTP/1.1 503 Later\r\nContent-Length: 5\r\n\r\nLater"}}},
                         {{{"HTTP/1.1 203 Changed\r\nContent-Length: 7\r\n\r\nChanged"}}},
                         {{{"HTTP/1.1 206 Part\r\nContent-Length: 4\r\n\r\nPart"}}}});
  for (int answer = 0; answer < 4; ++answer) EXPECT_EQ(Text(server), "");
}

TEST_F(QtWebTest, WhatSpeaksAnotherLanguageGivesNothingAndNoHang) {
  LoopbackServer server({{{{"220 mail.invalid ready\r\n\r\n"}}}, {{{std::string(3000, '\0')}}}});
  const Stopwatch watch;
  EXPECT_EQ(Text(server), "");
  EXPECT_EQ(Text(server), "");
  EXPECT_LT(watch.Passed(), kAtMost);
}

TEST_F(QtWebTest, ARedirectionIsFollowed) {
  LoopbackServer target({{{{"HTTP/1.0 200 OK\r\n\r\nthere"}}}});
  LoopbackServer server(
      {{{{"HTTP/1.1 302 Found\r\nLocation: " + target.Address("/x") + "\r\nContent-Length: 0\r\n\r\n"}}}});
  EXPECT_EQ(Text(server), "there");
}

TEST_F(QtWebTest, RedirectionsInACircleEnd) {
  LoopbackServer server({{{{"HTTP/1.0 302 Found\r\nLocation: /again\r\nContent-Length: 0\r\n\r\n"}}}});
  EXPECT_EQ(Text(server), "");
  EXPECT_LE(server.Requests().size(), 10U);
}

TEST_F(QtWebTest, ARedirectionOutOfTheWebIsNotFollowed) {
  LoopbackServer server(
      {{{{"HTTP/1.1 302 Found\r\nLocation: file:///etc/hostname\r\nContent-Length: 0\r\n\r\n"}}}});
  EXPECT_EQ(Text(server), "");
}

TEST_F(QtWebTest, WhereNobodyListensThereIsNothing) {
  std::string address;
  {
    const LoopbackServer gone({Answer{}});
    address = gone.Address("/");
  }
  EXPECT_EQ(web.FetchText(address), "");
  EXPECT_EQ(web.FetchBytes(address), "");
}

TEST_F(QtWebTest, OnlyAddressesOfTheWebAreFetched) {
  for (const char* address : {"", "file:///etc/hostname", "/etc/hostname", "data:,x", "qrc:/x",
                              "ftp://127.0.0.1/", "http//x", "http://", "http://[::1", "\xFF\xFE"}) {
    EXPECT_EQ(web.FetchText(address), "") << address;
  }
}

TEST_F(QtWebTest, EachFetchIsOneRequestOnAConnectionOfItsOwn) {
  const auto answer = [](const std::string& body) {
    return Answer{
        {{"HTTP/1.0 200 OK\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body}}};
  };
  LoopbackServer server({answer("one"), answer("two"), answer("three"), answer("four")});
  for (const char* body : {"one", "two", "three", "four"}) EXPECT_EQ(Text(server), body);
  EXPECT_EQ(server.Requests().size(), 4U) << testing::PrintToString(server.Requests());
}

TEST_F(QtWebTest, EventsAreServedWhileAFetchWaits) {
  LoopbackServer server({{{{"HTTP/1.0 200 OK\r\n\r\n"}, {"x", 300ms}}}});
  int ticks = 0;
  QTimer timer;
  QObject::connect(&timer, &QTimer::timeout, [&] { ++ticks; });
  timer.start(10);
  EXPECT_EQ(Text(server), "x");
  EXPECT_GE(ticks, 5);
}

TEST_F(QtWebTest, StoppingEndsAFetchAndEveryLaterOneAtOnce) {
  LoopbackServer server({{{}, Ending::KeptOpen}});
  QtWeb patient;
  QTimer::singleShot(50, [&] { patient.StopWaiting(); });
  const Stopwatch watch;
  EXPECT_EQ(patient.FetchText(server.Address("/")), "");
  EXPECT_EQ(patient.FetchBytes(server.Address("/")), "");
  EXPECT_FALSE(patient.MakeSocket()->Connect("127.0.0.1", server.Port(), 10s));
  EXPECT_LT(watch.Passed(), kAtMost);
}

}  // namespace
}  // namespace kestrune::test
