#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "config/update/HttpGet.h"
#include "support/FakeWeb.h"
#include "support/SimulatedEventLoop.h"

namespace kestrune::test {
namespace {

using ::testing::ElementsAre;

class HttpGetTest : public ::testing::Test {
 protected:
  HttpGetTest() { web.Reachable = true; }
  [[nodiscard]] std::string Get(std::string_view address) { return config::HttpGet(web, loop, address); }

  SimulatedEventLoop loop;
  FakeWeb web;
};

TEST_F(HttpGetTest, TheRequestByteForByte) {
  web.Reply = {"HTTP/1.0 200 OK\r\n\r\nbody"};
  EXPECT_EQ(Get("http://host.invalid/NewVersion.txt"), "body");
  EXPECT_EQ(web.Sent,
            "GET /newversion.txt HTTP/1.0\r\n"
            "Host: host.invalid\r\n"
            "Accept: text/*\r\n"
            "\r\n");
}

TEST_F(HttpGetTest, ItIsSentLineByLineAndReadOnce) {
  web.Reply = {"a", "b"};
  EXPECT_EQ(Get("http://h/p"), "a") << "what comes later is not read";
  EXPECT_THAT(web.Calls, ElementsAre("Connect h:80 10000", "Write 17", "Write 9", "Write 16", "Write 2",
                                     "Read 32767", "Disconnect"));
}

TEST_F(HttpGetTest, EventsAreServedOnceBeforeTheRead) {
  std::vector<std::string> seen;
  loop.Post([&] { seen = web.Calls; });
  web.Reply = {"x"};
  EXPECT_EQ(Get("h"), "x");
  ASSERT_FALSE(seen.empty());
  EXPECT_EQ(seen.back(), "Write 2");
}

struct Address {
  const char* Text;
  const char* Connect;
  const char* Line;
};

TEST_F(HttpGetTest, AddressesAreCutIntoHostAndPath) {
  constexpr Address kAddresses[] = {
      {"http://h/p/q.txt?x=/", "Connect h:80 10000", "GET /p/q.txt?x=/ HTTP/1.0\r\n"},
      {"  HTTP://H.Example/P  ", "Connect h.example:80 10000", "GET /p HTTP/1.0\r\n"},
      {"h/p", "Connect h:80 10000", "GET /p HTTP/1.0\r\n"},
      {"http://h", "Connect h:80 10000", "GET  HTTP/1.0\r\n"},
      {"h", "Connect h:80 10000", "GET  HTTP/1.0\r\n"},
      {"http:///p", "Connect :80 10000", "GET /p HTTP/1.0\r\n"},
      {"", "Connect :80 10000", "GET  HTTP/1.0\r\n"},
      {"https://h/p", "Connect https::80 10000", "GET //h/p HTTP/1.0\r\n"},
  };
  for (const Address& address : kAddresses) {
    web.Calls.clear();
    web.Sent.clear();
    EXPECT_EQ(Get(address.Text), "");
    EXPECT_EQ(web.Calls.front(), address.Connect) << address.Text;
    EXPECT_TRUE(web.Sent.starts_with(address.Line)) << address.Text << " sent " << web.Sent;
  }
}

TEST_F(HttpGetTest, AReplyWithoutAnEmptyLineIsTakenWhole) {
  web.Reply = {"HTTP/1.0 200 OK\r\nServer: x\r\n"};
  EXPECT_EQ(Get("h"), "HTTP/1.0 200 OK\r\nServer: x\r\n");
}

TEST_F(HttpGetTest, TheFirstEmptyLineCounts) {
  web.Reply = {"head\r\n\r\none\r\n\r\ntwo"};
  EXPECT_EQ(Get("h"), "one\r\n\r\ntwo");
}

TEST_F(HttpGetTest, OnlyStatus200Counts) {
  for (const char* status : {"HTTP/1.0 500 Oh", "HTTP/1.1 404 Not Found", "HTTP/1.0 204",
                             "HTTP/1.0 302 Found", "HTTP/1.0 2000 x", "HTTP/1.0"}) {
    web.Reply = {std::string(status) + "\r\n\r\nsorry"};
    EXPECT_EQ(Get("h"), "") << status;
  }
  for (const char* status : {"HTTP/1.0 200 OK", "HTTP/1.1 200", "HTTP/1.1 200 "}) {
    web.Reply = {std::string(status) + "\r\n\r\nbody"};
    EXPECT_EQ(Get("h"), "body") << status;
  }
}

TEST_F(HttpGetTest, AnUnreachableHostGivesNothing) {
  web.Reachable = false;
  web.Reply = {"never read"};
  EXPECT_EQ(Get("http://h/p"), "");
}

}  // namespace
}  // namespace kestrune::test
