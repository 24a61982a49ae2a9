#include <cstdint>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "presenters/GrabKill.h"
#include "presenters/RestrictListEditor.h"
#include "support/FakeEnvironment.h"
#include "support/MemoryFiles.h"
#include "support/RecordingJournal.h"
#include "support/ScriptedDialogs.h"

namespace kestrune::test {
namespace {

using presenters::GrabKill;
using ::testing::ElementsAre;

class GrabKillTest : public ::testing::Test {
 protected:
  static constexpr const char* kPath = "/home/user/Application Data/Kestrune/Restriction.txt";

  GrabKillTest() {
    addition_.SetWindow([this] {
      question_ = addition_.lblQuestion();
      EXPECT_EQ(addition_.GrabMode(), 0) << "an answer of an earlier question";
      if (answer_ >= 0) addition_.cmdResult(answer_);
    });
  }
  void Add(GrabKill::Field field, std::string_view caption, std::int16_t answer) {
    answer_ = answer;
    addition_.DblClick(field, caption);
  }

  MemoryFiles files_;
  FakeEnvironment environment_;
  ScriptedDialogs dialogs_;
  RecordingJournal journal_;
  schedule::Restrictions lists_{files_, environment_, journal_};
  presenters::RestrictListEditor editor_{lists_, files_, environment_, dialogs_, journal_};
  GrabKill addition_{lists_};
  std::string question_;
  std::int16_t answer_ = -1;
};

TEST_F(GrabKillTest, TheQuestionNamesTheFieldAndItsText) {
  Add(GrabKill::Field::Artist, "The Moonlighters", 0);
  EXPECT_EQ(question_,
            "Do you want to add the Artist \"The Moonlighters\" to the Grab list (always record) or the Kill "
            "list (never record)?");
  Add(GrabKill::Field::Song, "100%t %v", 0);
  EXPECT_EQ(question_,
            "Do you want to add the Song \"100%t %v\" to the Grab list (always record) or the Kill list "
            "(never record)?");
}

TEST_F(GrabKillTest, EachAnswerGoesToItsList) {
  Add(GrabKill::Field::Artist, "A", 1);
  Add(GrabKill::Field::Song, "B", 1);
  Add(GrabKill::Field::Artist, "C", 2);
  Add(GrabKill::Field::Song, "D", 2);
  EXPECT_EQ(files_.Text(kPath), "0A\n1B\n2C\n3D\n");
  EXPECT_TRUE(lists_.IsInGrabList("A", ""));
  EXPECT_TRUE(lists_.IsInKillList("", "D"));
}

TEST_F(GrabKillTest, CancelAndACloseAddNothing) {
  Add(GrabKill::Field::Artist, "A", 2);
  Add(GrabKill::Field::Artist, "B", 0);
  Add(GrabKill::Field::Artist, "C", -1);
  EXPECT_EQ(files_.Text(kPath), "2A\n");
}

TEST_F(GrabKillTest, NothingIsAskedAboutAnEmptyText) {
  Add(GrabKill::Field::Artist, "   ", 1);
  EXPECT_EQ(question_, "");
  EXPECT_FALSE(files_.Exists(kPath));
}

TEST_F(GrabKillTest, WithoutAWindowNothingIsAdded) {
  addition_.SetWindow({});
  Add(GrabKill::Field::Artist, "A", 1);
  EXPECT_FALSE(files_.Exists(kPath));
}

TEST_F(GrabKillTest, ADoubledAmpersandIsWrittenAsOne) {
  Add(GrabKill::Field::Artist, " Salt && Sun ", 1);
  EXPECT_EQ(files_.Text(kPath), "0Salt & Sun\n");
  EXPECT_TRUE(lists_.IsInGrabList("Salt & Sun", ""));
}

TEST_F(GrabKillTest, TheSameLineCanStandThereTwice) {
  Add(GrabKill::Field::Artist, "A", 1);
  Add(GrabKill::Field::Artist, "A", 1);
  EXPECT_EQ(files_.Text(kPath), "0A\n0A\n");
}

TEST_F(GrabKillTest, ALastLineWithoutAnEndKeepsItsMeaning) {
  files_.Put(kPath, "0Moon");
  Add(GrabKill::Field::Artist, "Sun", 1);
  EXPECT_EQ(files_.Text(kPath), "0Moon\n0Sun\n");
}

TEST_F(GrabKillTest, AnOpenEditorWithUnsavedEditsGetsTheEntryTooAndTheFileAtOnce) {
  files_.Put(kPath, "0Moon\n");
  editor_.Load();
  editor_.txtRestrict_Change(0, "Zoe");
  editor_.cmdAdd(0);
  Add(GrabKill::Field::Artist, "Sun", 1);
  EXPECT_EQ(files_.Text(kPath), "0Moon\n0Sun\n");
  EXPECT_THAT(editor_.Column(0).lstRestrict, ElementsAre("Moon", "Sun", "Zoe"));
  EXPECT_TRUE(editor_.cmdSave());
  EXPECT_EQ(files_.Text(kPath), "0Moon\n0Sun\n0Zoe\n");
}

TEST_F(GrabKillTest, AnEntryThatCannotBeWrittenIsLoggedAndAskedForAgain) {
  editor_.Load();
  files_.FailNext(FileOperation::Append, 2);
  int questions = 0;
  addition_.SetWindow([&] {
    ++questions;
    addition_.cmdResult(2);
  });
  addition_.DblClick(GrabKill::Field::Song, "Rain");
  EXPECT_EQ(questions, 3);
  const std::string line =
      std::string("\"Rain\" was not added to the Grab and Kill lists: ") + kPath + " could not be written";
  EXPECT_THAT(journal_.Log, ElementsAre(line, line));
  EXPECT_EQ(files_.Text(kPath), "3Rain\n");
  EXPECT_THAT(editor_.Column(3).lstRestrict, ElementsAre("Rain")) << "once, when it is in the file";
}

TEST_F(GrabKillTest, ATextWhoseListIsKnownIsAskedForOnlyIfItCannotBeWritten) {
  answer_ = 1;
  addition_.Add(GrabKill::Field::Artist, true, "Salt && Sand");
  EXPECT_EQ(question_, "");
  files_.FailNext(FileOperation::Append, 1);
  addition_.Add(GrabKill::Field::Song, true, "Low && High");
  EXPECT_THAT(question_, ::testing::HasSubstr("the Song \"Low &&&& High\""));
  EXPECT_EQ(files_.Text(kPath), "2Salt && Sand\n1Low && High\n");
}

TEST_F(GrabKillTest, AnAdditionToAFileThatCannotBeReadStartsALineOfItsOwn) {
  files_.Put(kPath, "0Moon");
  lists_.LoadRestrictions();
  files_.FailNext(FileOperation::Read);
  EXPECT_TRUE(lists_.Add(schedule::RestrictList::GrabArtists, "Sun").Ok());
  EXPECT_EQ(files_.Text(kPath), "0Moon\n0Sun\n");
  EXPECT_TRUE(lists_.IsInGrabList("Moon", ""));
}

TEST_F(GrabKillTest, AControlCharacterFromTheRadioMakesNoSecondLine) {
  Add(GrabKill::Field::Song, "Rain\n3", 1);
  EXPECT_EQ(files_.Text(kPath), "1Rain 3\n");
}

TEST_F(GrabKillTest, TheTextIsThatOfTheClickWhateverIsOnShowAtTheAnswer) {
  std::string caption = "The Moonlighters";
  addition_.SetWindow([&] {
    caption = "Somebody Else !!";
    addition_.cmdResult(1);
  });
  addition_.DblClick(GrabKill::Field::Artist, caption);
  EXPECT_EQ(files_.Text(kPath), "0The Moonlighters\n");
}

}  // namespace
}  // namespace kestrune::test
