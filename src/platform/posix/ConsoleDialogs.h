#pragma once

#include <ostream>

#include "platform/Dialogs.h"

namespace kestrune::platform {

/// Dialogs of a program without windows: each is printed and answered at once with the answer that
/// changes least, Cancel before No before Ok. The agreement counts as accepted only if that was said at the
/// start.
class ConsoleDialogs final : public Dialogs {
 public:
  /// `out` must outlive this object; the program passes standard error.
  ConsoleDialogs(std::ostream& out, bool agreementAccepted);

  [[nodiscard]] MessageAnswer Show(const Message& message) override;
  void Open(const Message& message, Answered answered) override { answered(Show(message)); }
  [[nodiscard]] bool AskForAgreement() override;
  void GiveUp() override {}

 private:
  std::ostream& out_;
  bool agreementAccepted_;
};

}  // namespace kestrune::platform
