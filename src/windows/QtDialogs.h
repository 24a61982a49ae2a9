#pragma once

#include <string>

#include "platform/Dialogs.h"

namespace kestrune::windows {

/// Message boxes of the desktop. Once the program closes nobody is asked any more: what is open is answered,
/// and so is all that follows, with the answer that changes least, Cancel before No before Ok.
class QtDialogs final : public platform::Dialogs {
 public:
  /// `agreementFile` is shown for the agreement, unless it was accepted on the command line.
  QtDialogs(std::string agreementFile, bool agreementAccepted);

  [[nodiscard]] platform::MessageAnswer Show(const platform::Message& message) override;
  [[nodiscard]] bool AskForAgreement() override;

  void GiveUp();

 private:
  std::string agreementFile_;
  bool agreementAccepted_;
  bool givenUp_ = false;
};

}  // namespace kestrune::windows
