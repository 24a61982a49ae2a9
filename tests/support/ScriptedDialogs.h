#pragma once

#include <vector>

#include "platform/Dialogs.h"

namespace kestrune::test {

/// Answers as the test wants and keeps what was asked.
class ScriptedDialogs final : public platform::Dialogs {
 public:
  [[nodiscard]] platform::MessageAnswer Show(const platform::Message& message) override {
    Shown.push_back(message);
    return Answer;
  }
  [[nodiscard]] bool AskForAgreement() override {
    ++AgreementAsked;
    return Agrees;
  }

  std::vector<platform::Message> Shown;
  platform::MessageAnswer Answer = platform::MessageAnswer::Ok;
  int AgreementAsked = 0;
  bool Agrees = true;
};

}  // namespace kestrune::test
