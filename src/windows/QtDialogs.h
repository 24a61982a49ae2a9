#pragma once

#include <string>

#include "platform/Dialogs.h"

namespace kestrune::windows {

/// Message boxes of the desktop. Once the program closes nobody is asked any more: the open boxes and all
/// later ones are answered with the answer that changes least, Cancel before No before Ok.
class QtDialogs final : public platform::Dialogs {
 public:
  /// `agreementFile` is shown for the agreement, unless it was accepted on the command line.
  QtDialogs(std::string agreementFile, bool agreementAccepted);

  [[nodiscard]] platform::MessageAnswer Show(const platform::Message& message) override;
  /// The box takes all input of the program's windows, and the loop goes on.
  void Open(const platform::Message& message, Answered answered) override;
  [[nodiscard]] bool AskForAgreement() override;
  void GiveUp() override;

 private:
  std::string agreementFile_;
  bool agreementAccepted_;
  bool givenUp_ = false;
};

}  // namespace kestrune::windows
