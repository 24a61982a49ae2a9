#include <string>
#include <string_view>
#include <variant>

#include <gtest/gtest.h>

#include "control/Protocol.h"

namespace kestrune::control {
namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;

constexpr std::string_view kExpected = R"(; expected one such as {"command":"tune","arguments":["44"]})";

std::string ErrorOf(std::string_view line) {
  const auto read = RequestFromLine(line);
  const auto* error = std::get_if<ReadError>(&read);
  return error == nullptr ? "" : error->Reason;
}

Request RequestOf(std::string_view line) {
  const auto read = RequestFromLine(line);
  const auto* request = std::get_if<Request>(&read);
  EXPECT_NE(request, nullptr) << ErrorOf(line);
  return request == nullptr ? Request{} : *request;
}

TEST(Protocol, ARequestOnTheWire) {
  EXPECT_EQ(ToLine(Request{"tune", {"44"}}), R"({"command":"tune","arguments":["44"]})");
  EXPECT_EQ(ToLine(Request{"status", {}}), R"({"command":"status","arguments":[]})");
}

TEST(Protocol, AReplyOnTheWire) {
  EXPECT_EQ(ToLine(Reply{}), R"({"exit":0,"reason":"","result":null})");
  EXPECT_EQ(ToLine(Reply{ExitCode::Refused, "no radio", nullptr}),
            R"({"exit":1,"reason":"no radio","result":null})");
  EXPECT_EQ(ToLine(Reply{ExitCode::Done, "", Json::array({"a", "b"})}),
            R"({"exit":0,"reason":"","result":["a","b"]})");
}

TEST(Protocol, ALineHasNoLineEndInside) {
  EXPECT_EQ(ToLine(Reply{ExitCode::Done, "", "a\nb"}), R"({"exit":0,"reason":"","result":"a\nb"})");
}

TEST(Protocol, BytesThatAreNoUtf8GoOutReplaced) {
  EXPECT_EQ(ToLine(Reply{ExitCode::Done, "", "a\xFF"}),
            "{\"exit\":0,\"reason\":\"\",\"result\":\"a\xEF\xBF\xBD\"}");
}

TEST(Protocol, ARequestIsRead) {
  const Request request = RequestOf(R"({"command":"set","arguments":["FileDir","/m\u00fcsik/ \"x\""]})");
  EXPECT_EQ(request.Command, "set");
  ASSERT_EQ(request.Arguments.size(), 2U);
  EXPECT_EQ(request.Arguments[0], "FileDir");
  EXPECT_EQ(request.Arguments[1], "/m\xC3\xBCsik/ \"x\"");
}

TEST(Protocol, OrderBlanksAndMissingArgumentsDoNotMatter) {
  EXPECT_EQ(RequestOf(R"({"arguments":["44"],"command":"tune"})").Arguments.size(), 1U);
  EXPECT_EQ(RequestOf(" { \"command\" : \"status\" } \r").Command, "status");
  EXPECT_TRUE(RequestOf(R"({"command":"status"})").Arguments.empty());
}

struct WrongCase {
  std::string Line;
  std::string_view What;
};

TEST(Protocol, EachWrongRequestIsNamed) {
  const WrongCase kCases[] = {
      {"", "the request is not JSON"},
      {" ", "the request is not JSON"},
      {"tune 44", "the request is not JSON"},
      {R"({"command":"tune")", "the request is not JSON"},
      {R"({"command":"tune"} x)", "the request is not JSON"},
      {R"({"command":"tune"}{"command":"tune"})", "the request is not JSON"},
      {R"({"command":"\ud800"})", "the request is not JSON"},
      {"{\"command\":\"status\"}\0"s, "the request is not JSON"},
      {"{\"command\":\"a\nb\"}", "the request is not JSON"},
      {"null", "the request is not a JSON object"},
      {"44", "the request is not a JSON object"},
      {R"("tune")", "the request is not a JSON object"},
      {"[]", "the request is not a JSON object"},
      {"{}", "the request names no command"},
      {R"({"arguments":[]})", "the request names no command"},
      {R"({"command":44})", R"("command" must be a text)"},
      {R"({"command":null})", R"("command" must be a text)"},
      {R"({"command":["tune"]})", R"("command" must be a text)"},
      {R"({"command":"a\nb"})", R"("command" holds a control character)"},
      {R"({"command":"tune","arguments":"44"})", R"("arguments" must be an array of texts)"},
      {R"({"command":"tune","arguments":null})", R"("arguments" must be an array of texts)"},
      {R"({"command":"tune","arguments":{}})", R"("arguments" must be an array of texts)"},
      {R"({"command":"tune","arguments":[44]})", "argument 1 must be a text"},
      {R"({"command":"set","arguments":["a",true]})", "argument 2 must be a text"},
      {R"({"command":"set","arguments":["a","b\n[x]"]})", "argument 2 holds a control character"},
      {R"({"command":"set","arguments":["\u0000"]})", "argument 1 holds a control character"},
      {R"({"command":"set","arguments":["\u007f"]})", "argument 1 holds a control character"},
      {R"({"command":"tune","arguments":[[]]})", "the request is nested too deep"},
      {R"({"command":"tune","arguments":[{"a":1}]})", "the request is nested too deep"},
      {R"({"command":"tune","more":1})", R"(the request has an unknown member "more")"},
      {R"({"Command":"tune"})", R"(the request has an unknown member "Command")"},
      {R"({"command":"stop","command":"quit"})", "the request has a member twice"},
      {R"({"command":"tune","arguments":["1"],"arguments":["2"]})", "the request has a member twice"},
      {"{\"command\":\"\xFF\"}", "the request is not UTF-8"},
      {"\xFE\xFF", "the request is not UTF-8"},
  };
  for (const WrongCase& one : kCases) {
    EXPECT_EQ(ErrorOf(one.Line), std::string(one.What) + std::string(kExpected)) << one.Line;
  }
}

TEST(Protocol, DepthWithoutEndIsRefused) {
  EXPECT_EQ(ErrorOf(std::string(60000, '[')), "the request is nested too deep" + std::string(kExpected));
  EXPECT_EQ(ErrorOf(R"({"command":)" + std::string(30000, '[') + std::string(30000, ']') + "}"),
            "the request is nested too deep" + std::string(kExpected));
}

TEST(Protocol, TheLongestRequestIsReadAndOneByteMoreIsNot) {
  const std::string head = R"({"command":"set","arguments":["K",")";
  const std::string tail = R"("]})";
  const std::string value(65536 - head.size() - tail.size(), 'x');
  EXPECT_EQ(RequestOf(head + value + tail).Arguments.at(1), value);
  EXPECT_EQ(ErrorOf(head + value + "x" + tail), "the request is longer than 65536 bytes");
}

TEST(Protocol, AReplyIsRead) {
  const auto reply = ReplyFromLine(R"({"exit":1,"reason":"no radio","result":null})");
  ASSERT_TRUE(reply);
  EXPECT_EQ(reply->Exit, ExitCode::Refused);
  EXPECT_EQ(reply->Reason, "no radio");
  EXPECT_TRUE(reply->Result.is_null());
}

TEST(Protocol, WhatIsNoReplyIsNone) {
  for (const std::string_view line :
       {""sv, "x"sv, "null"sv, "[]"sv, "{}"sv, R"({"exit":0,"reason":""})"sv, R"({"exit":0,"result":1})"sv,
        R"({"exit":"0","reason":"","result":1})"sv, R"({"exit":0,"reason":1,"result":1})"sv,
        R"({"exit":3,"reason":"","result":1})"sv, R"({"exit":-1,"reason":"","result":1})"sv,
        R"({"exit":0.5,"reason":"","result":1})"sv}) {
    EXPECT_FALSE(ReplyFromLine(line)) << line;
  }
}

}  // namespace
}  // namespace kestrune::control
