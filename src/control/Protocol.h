#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "control/ReportJson.h"

namespace kestrune::control {

/// The talk on the control socket: one JSON object a line each way, the lines ended by "\n". A request is
/// {"command":"tune","arguments":["44"]}, where "arguments" may be left out; its reply is
/// {"exit":0,"reason":"","result":null}.

/// How a command ended; also the exit status of kestrune-ctl.
enum class ExitCode { Done = 0, Refused = 1, WrongUse = 2, NoSuchUnit = 3 };

/// A longer request is refused unread.
inline constexpr std::size_t kLongestRequest = 64UL * 1024;

struct Request {
  std::string Command;
  std::vector<std::string> Arguments;
};

struct Reply {
  ExitCode Exit = ExitCode::Done;
  std::string Reason;  ///< one line, empty if done
  Json Result;         ///< null if the command has none
};

/// Why a text could not be read, as one line that also says what is expected.
struct ReadError {
  std::string Reason;
};

/// Lines without their end. Bytes that are no UTF-8 go out as U+FFFD.
[[nodiscard]] std::string ToLine(const Request& request);
[[nodiscard]] std::string ToLine(const Reply& reply);

/// Takes any bytes. A request that comes out has a command and arguments without control characters; whether
/// they make sense is for the command table to say.
[[nodiscard]] std::variant<Request, ReadError> RequestFromLine(std::string_view line);

/// Nothing if the line is no reply.
[[nodiscard]] std::optional<Reply> ReplyFromLine(std::string_view line);

}  // namespace kestrune::control
