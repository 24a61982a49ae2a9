#include "control/ControlServer.h"

#include <optional>
#include <variant>

#include "control/CommandTable.h"
#include "control/Protocol.h"

namespace kestrune::control {

void Dispatch(ControlTarget& target, std::string_view line, const std::function<void(std::string)>& answer) {
  const std::variant<Request, ReadError> read = RequestFromLine(line);
  if (const auto* error = std::get_if<ReadError>(&read)) {
    return answer(ToLine(Reply{ExitCode::WrongUse, error->Reason, nullptr}));
  }
  const auto& request = std::get<Request>(read);
  if (const std::optional<std::string> wrong = WhatIsWrong(request)) {
    return answer(ToLine(Reply{ExitCode::WrongUse, *wrong, nullptr}));
  }
  RunCommand(target, request, [answer](const Reply& reply) { answer(ToLine(reply)); });
}

}  // namespace kestrune::control
