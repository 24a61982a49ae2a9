#include "control/Protocol.h"

#include <algorithm>
#include <utility>

#include <fmt/format.h>

#include "control/ConsoleText.h"
#include "control/Utf8.h"

namespace kestrune::control {
namespace {

constexpr std::string_view kExpected = R"(expected one such as {"command":"tune","arguments":["44"]})";

ReadError Wrong(std::string_view what) {
  return {fmt::format("{}; {}", what, kExpected)};
}

std::string Dump(const Json& json) {
  return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

bool HasControlCharacter(std::string_view text) {
  return std::any_of(text.begin(), text.end(), [](char byte) {
    const auto value = static_cast<unsigned char>(byte);
    return value < 0x20 || value == 0x7F;
  });
}

/// The document, and what its shape breaks. The library's parser does not recurse, so depth costs nothing
/// here; it is refused because no request has a use for it.
struct Document {
  Json Root;
  bool TooDeep = false;
  bool Doubled = false;
};

Document Parse(std::string_view line) {
  Document document;
  std::vector<std::string> names;
  const Json::parser_callback_t look = [&](int depth, Json::parse_event_t event, Json& parsed) {
    using Event = Json::parse_event_t;
    if (depth > 1 && (event == Event::object_start || event == Event::array_start)) document.TooDeep = true;
    if (depth == 1 && event == Event::key) {
      const auto& name = parsed.get_ref<const std::string&>();
      if (std::find(names.begin(), names.end(), name) != names.end()) document.Doubled = true;
      names.push_back(name);
    }
    return !document.TooDeep;
  };
  document.Root = Json::parse(line, look, /*allow_exceptions=*/false);
  return document;
}

std::optional<std::string> ReadArguments(const Json& array, std::vector<std::string>& arguments) {
  if (!array.is_array()) return R"("arguments" must be an array of texts)";
  for (const Json& argument : array) {
    if (!argument.is_string()) return fmt::format("argument {} must be a text", arguments.size() + 1);
    const auto& text = argument.get_ref<const std::string&>();
    if (HasControlCharacter(text)) {
      return fmt::format("argument {} holds a control character", arguments.size() + 1);
    }
    arguments.push_back(text);
  }
  return std::nullopt;
}

}  // namespace

std::string ToLine(const Request& request) {
  Json json = Json::object();
  json["command"] = request.Command;
  json["arguments"] = request.Arguments;
  return Dump(json);
}

std::string ToLine(const Reply& reply) {
  Json json = Json::object();
  json["exit"] = static_cast<int>(reply.Exit);
  json["reason"] = reply.Reason;
  json["result"] = reply.Result;
  return Dump(json);
}

std::variant<Request, ReadError> RequestFromLine(std::string_view line) {
  if (line.size() > kLongestRequest) {
    return ReadError{fmt::format("the request is longer than {} bytes", kLongestRequest)};
  }
  if (!IsUtf8(line)) return Wrong("the request is not UTF-8");

  // The library takes a NUL for the end of the text and would ignore what follows.
  if (line.find('\0') != std::string_view::npos) return Wrong("the request is not JSON");
  const Document document = Parse(line);
  if (document.TooDeep) return Wrong("the request is nested too deep");
  if (document.Root.is_discarded()) return Wrong("the request is not JSON");
  if (!document.Root.is_object()) return Wrong("the request is not a JSON object");
  if (document.Doubled) return Wrong("the request has a member twice");

  Request request;
  bool named = false;
  for (const auto& [name, value] : document.Root.items()) {
    if (name == "command") {
      if (!value.is_string()) return Wrong(R"("command" must be a text)");
      request.Command = value.get_ref<const std::string&>();
      if (HasControlCharacter(request.Command)) return Wrong("\"command\" holds a control character");
      named = true;
    } else if (name == "arguments") {
      if (const auto wrong = ReadArguments(value, request.Arguments)) return Wrong(*wrong);
    } else {
      return Wrong(fmt::format("the request has an unknown member {}", Quoted(name)));
    }
  }
  if (!named) return Wrong("the request names no command");
  return request;
}

std::optional<Reply> ReplyFromLine(std::string_view line) {
  const Json json = Json::parse(line, nullptr, /*allow_exceptions=*/false);
  if (!json.is_object()) return std::nullopt;
  const auto exit = json.find("exit");
  const auto reason = json.find("reason");
  const auto result = json.find("result");
  if (exit == json.end() || reason == json.end() || result == json.end()) return std::nullopt;
  if (!exit->is_number_integer() || !reason->is_string()) return std::nullopt;
  const auto code = exit->get<std::int64_t>();
  if (code < static_cast<int>(ExitCode::Done) || code > static_cast<int>(ExitCode::WrongUse))
    return std::nullopt;
  return Reply{static_cast<ExitCode>(code), reason->get<std::string>(), *result};
}

}  // namespace kestrune::control
