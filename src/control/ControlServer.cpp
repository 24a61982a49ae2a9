#include "control/ControlServer.h"

#include <optional>
#include <variant>

#include "control/CommandTable.h"
#include "control/Protocol.h"

namespace kestrune::control {

std::string Dispatch(ControlTarget& target, std::string_view line) {
  const std::variant<Request, ReadError> read = RequestFromLine(line);
  if (const auto* error = std::get_if<ReadError>(&read)) {
    return ToLine(Reply{ExitCode::WrongUse, error->Reason, nullptr});
  }
  const auto& request = std::get<Request>(read);
  if (const std::optional<std::string> wrong = WhatIsWrong(request)) {
    return ToLine(Reply{ExitCode::WrongUse, *wrong, nullptr});
  }
  return ToLine(RunCommand(target, request));
}

}  // namespace kestrune::control
