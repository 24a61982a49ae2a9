#pragma once

#include <string>
#include <string_view>

namespace kestrune::platform {

enum class MessageIcon { Information, Warning, Critical, Question, None };
enum class MessageButtons { Ok, YesNo, YesNoCancel };
enum class MessageAnswer { Ok, Yes, No, Cancel };

/// The answer of a user who is not there, or who closes the message: the one that changes least.
[[nodiscard]] constexpr MessageAnswer SafeAnswer(MessageButtons buttons) {
  switch (buttons) {
    case MessageButtons::YesNoCancel:
      return MessageAnswer::Cancel;
    case MessageButtons::YesNo:
      return MessageAnswer::No;
    case MessageButtons::Ok:
      break;
  }
  return MessageAnswer::Ok;
}

struct Message {
  std::string Title;
  std::string Text;
  MessageIcon Icon = MessageIcon::Information;
  MessageButtons Buttons = MessageButtons::Ok;
};

/// What the program asks of the user outside its windows. The main thread calls; a call returns when the user
/// has answered, and events run meanwhile.
class Dialogs {
 public:
  virtual ~Dialogs() = default;

  [[nodiscard]] virtual MessageAnswer Show(const Message& message) = 0;
  /// Shows the first-run agreement; false ends the program.
  [[nodiscard]] virtual bool AskForAgreement() = 0;
};

}  // namespace kestrune::platform
