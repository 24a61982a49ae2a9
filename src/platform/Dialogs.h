#pragma once

#include <functional>
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
  std::string Details = {};  ///< lines that a user sees on demand; empty for none
  MessageIcon Icon = MessageIcon::Information;
  MessageButtons Buttons = MessageButtons::Ok;
};

/// What the program asks of the user outside its windows. All calls come on the main thread.
class Dialogs {
 public:
  using Answered = std::function<void(MessageAnswer)>;

  virtual ~Dialogs() = default;

  /// Shows a message and returns when the user has answered; events run meanwhile. For windows: what runs between
  /// the events must not wait for a user, and uses Open.
  [[nodiscard]] virtual MessageAnswer Show(const Message& message) = 0;
  /// Shows a message and returns at once. `answered` is called exactly once: from the event loop when the user
  /// has answered, or within the call if nobody is asked.
  virtual void Open(const Message& message, Answered answered) = 0;
  /// Shows the first-run agreement and returns when the user has answered; false ends the program.
  [[nodiscard]] virtual bool AskForAgreement() = 0;
  /// The program closes: what is open is answered with the answer that changes least, and so is all that follows.
  virtual void GiveUp() = 0;
};

}  // namespace kestrune::platform
