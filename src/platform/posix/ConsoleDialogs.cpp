#include "platform/posix/ConsoleDialogs.h"

namespace kestrune::platform {
namespace {

const char* NameOf(MessageAnswer answer) {
  switch (answer) {
    case MessageAnswer::Cancel:
      return "Cancel";
    case MessageAnswer::No:
      return "No";
    case MessageAnswer::Yes:
      return "Yes";
    case MessageAnswer::Ok:
      break;
  }
  return "Ok";
}

}  // namespace

ConsoleDialogs::ConsoleDialogs(std::ostream& out, bool agreementAccepted)
    : out_(out), agreementAccepted_(agreementAccepted) {}

MessageAnswer ConsoleDialogs::Show(const Message& message) {
  const MessageAnswer answer = SafeAnswer(message.Buttons);
  out_ << message.Title << ": " << message.Text << "\n[answered: " << NameOf(answer) << "]" << std::endl;
  return answer;
}

bool ConsoleDialogs::AskForAgreement() {
  if (!agreementAccepted_) {
    out_ << "The agreement has not been accepted yet. Start once with a window to read it, or with "
            "--accept-agreement to accept it."
         << std::endl;
  }
  return agreementAccepted_;
}

}  // namespace kestrune::platform
