#pragma once

#include <deque>
#include <functional>
#include <utility>
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
  void Open(const platform::Message& message, Answered answered) override {
    Shown.push_back(message);
    if (KeepOpen) {
      OpenBoxes.push_back(std::move(answered));
    } else {
      answered(Answer);
    }
  }
  /// The user answers the oldest box that is open.
  void Press(platform::MessageAnswer answer) {
    const Answered answered = std::move(OpenBoxes.front());
    OpenBoxes.pop_front();
    answered(answer);
  }
  void GiveUp() override {
    ++GivenUp;
    OnGiveUp();
    while (!OpenBoxes.empty()) Press(platform::MessageAnswer::No);
  }
  [[nodiscard]] bool AskForAgreement() override {
    ++AgreementAsked;
    return Agrees;
  }

  std::vector<platform::Message> Shown;
  platform::MessageAnswer Answer = platform::MessageAnswer::Ok;
  bool KeepOpen = false;  ///< boxes that stop nothing stay open until Press
  std::deque<Answered> OpenBoxes;
  int GivenUp = 0;
  std::function<void()> OnGiveUp = [] {};
  int AgreementAsked = 0;
  bool Agrees = true;
};

}  // namespace kestrune::test
