#include <sstream>

#include <gtest/gtest.h>

#include "platform/posix/ConsoleDialogs.h"

namespace kestrune::test {
namespace {

using platform::ConsoleDialogs;
using platform::MessageAnswer;
using platform::MessageButtons;
using platform::MessageIcon;

TEST(ConsoleDialogs, EachKindIsAnsweredWithWhatChangesLeast) {
  const struct {
    MessageButtons Buttons;
    MessageAnswer Answer;
    const char* Text;
  } rows[] = {
      {MessageButtons::Ok, MessageAnswer::Ok, "Disk: It is full.\n[answered: Ok]\n"},
      {MessageButtons::YesNo, MessageAnswer::No, "Disk: It is full.\n[answered: No]\n"},
      {MessageButtons::YesNoCancel, MessageAnswer::Cancel, "Disk: It is full.\n[answered: Cancel]\n"},
  };
  for (const auto& row : rows) {
    std::ostringstream out;
    EXPECT_EQ(ConsoleDialogs(out, false)
                  .Show({.Title = "Disk",
                         .Text = "It is full.",
                         .Icon = MessageIcon::Warning,
                         .Buttons = row.Buttons}),
              row.Answer);
    EXPECT_EQ(out.str(), row.Text);
  }
}

TEST(ConsoleDialogs, TheAgreementIsAcceptedOnlyIfTheOptionWasGiven) {
  std::ostringstream out;
  EXPECT_TRUE(ConsoleDialogs(out, true).AskForAgreement());
  EXPECT_EQ(out.str(), "");
  EXPECT_FALSE(ConsoleDialogs(out, false).AskForAgreement());
  EXPECT_NE(out.str().find("--accept-agreement"), std::string::npos);
}

}  // namespace
}  // namespace kestrune::test
