#include <string>

#include <fmt/core.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "presenters/RestrictListEditor.h"
#include "support/FakeEnvironment.h"
#include "support/MemoryFiles.h"
#include "support/RecordingJournal.h"
#include "support/ScriptedDialogs.h"

namespace kestrune::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class RestrictListEditorTest : public ::testing::Test {
 protected:
  static constexpr const char* kPath = "/home/user/Application Data/Kestrune/Restriction.txt";

  void Load(std::string_view text) {
    files_.Put(kPath, text);
    editor_.Load();
  }
  const std::vector<std::string>& List(std::size_t index = 0) { return editor_.Column(index).lstRestrict; }
  void Write(std::string_view text) { editor_.txtRestrict_Change(0, text); }
  void Enter(std::string_view text) {
    Write(text);
    editor_.cmdAdd(0);
  }

  MemoryFiles files_;
  FakeEnvironment environment_;
  ScriptedDialogs dialogs_;
  RecordingJournal journal_;
  schedule::Restrictions lists_{files_, environment_, journal_};
  presenters::RestrictListEditor editor_{lists_, files_, environment_, dialogs_, journal_};
};

TEST_F(RestrictListEditorTest, LoadSortsEachListWithoutRegardToCase) {
  Load("1song\n0moon\n0Sun\n0Anna\n2kill\n3title\n");
  EXPECT_THAT(List(0), ElementsAre("Anna", "moon", "Sun"));
  EXPECT_THAT(List(1), ElementsAre("song"));
  EXPECT_THAT(List(2), ElementsAre("kill"));
  EXPECT_THAT(List(3), ElementsAre("title"));
  EXPECT_TRUE(editor_.IsLoaded());
  EXPECT_FALSE(editor_.ListDirty());
}

TEST_F(RestrictListEditorTest, LoadDropsLinesOfNoList) {
  Load("4four\n\n moon\n0\nx\n");
  EXPECT_THAT(List(0), ElementsAre(""));
  EXPECT_THAT(List(1), IsEmpty());
}

TEST_F(RestrictListEditorTest, LoadMakesTheFolderAndAMissingFileIsEmptyLists) {
  editor_.Load();
  EXPECT_TRUE(files_.IsFolder("/home/user/Application Data/Kestrune"));
  for (std::size_t index = 0; index < 4; ++index) EXPECT_THAT(List(index), IsEmpty());
}

TEST_F(RestrictListEditorTest, LoadKnowsNoLimitOf1000) {
  std::string text;
  for (int i = 0; i < 1500; ++i) text += fmt::format("3song {:04}\n", i);
  Load(text);
  EXPECT_EQ(List(3).size(), 1500U);
}

TEST_F(RestrictListEditorTest, LoadRemovesDuplicatesButForOneInLastPlace) {
  Load("0Moon\n0MOON\n0moon\n0Sun\n0SUN\n0sun\n");
  EXPECT_THAT(List(0), ElementsAre("Moon", "Sun", "sun"));
  EXPECT_TRUE(editor_.cmdSave());
  EXPECT_EQ(files_.Text(kPath), "0Moon\n0Sun\n") << "the save drops it";
}

TEST_F(RestrictListEditorTest, ADuplicatePairAloneSurvivesTheLoad) {
  Load("0Moon\n0moon\n");
  EXPECT_THAT(List(0), ElementsAre("Moon", "moon"));
}

TEST_F(RestrictListEditorTest, AddTakesTheTextWithoutBlanksAround) {
  editor_.Load();
  Enter("  The Moonlighters ");
  EXPECT_THAT(List(0), ElementsAre("The Moonlighters"));
  EXPECT_EQ(editor_.Column(0).txtRestrict, "");
  EXPECT_TRUE(editor_.ListDirty());
}

TEST_F(RestrictListEditorTest, AnEmptyBoxAddsTheMarkerOnce) {
  editor_.Load();
  Enter("");
  Enter("");
  EXPECT_THAT(List(0), ElementsAre("{Blank}"));
}

TEST_F(RestrictListEditorTest, ABoxOfBlanksMeansTheMarkerAndKeepsItsContent) {
  editor_.Load();
  Enter("   ");
  EXPECT_THAT(List(0), ElementsAre("{Blank}"));
  EXPECT_EQ(editor_.Column(0).txtRestrict, "   ");
}

TEST_F(RestrictListEditorTest, AMarkerWithBlanksAroundItCountsAsTheMarker) {
  Load("0 {Blank} \n");
  Enter("");
  EXPECT_THAT(List(0), ElementsAre(" {Blank} "));
}

TEST_F(RestrictListEditorTest, AnEmptyBoxTurnsTheSelectedItemIntoTheMarker) {
  Load("0Moon\n0Sun\n");
  editor_.lstRestrict_Click(0, 0);
  Enter("");
  EXPECT_THAT(List(0), ElementsAre("Sun", "{Blank}"));
  EXPECT_EQ(editor_.Column(0).Selected, -1);
}

TEST_F(RestrictListEditorTest, AClickOnTheMarkerEmptiesTheBoxAndAnAddLeavesIt) {
  Load("0{Blank}\n0Moon\n");
  Write("something");
  editor_.lstRestrict_Click(0, 1);
  EXPECT_EQ(editor_.Column(0).txtRestrict, "");
  editor_.cmdAdd(0);
  EXPECT_THAT(List(0), ElementsAre("Moon", "{Blank}"));
}

TEST_F(RestrictListEditorTest, AClickBringsTheItemIntoTheBox) {
  Load("0 Moon\n0Sun\n");
  editor_.lstRestrict_Click(0, 0);
  EXPECT_EQ(editor_.Column(0).Selected, 0);
  EXPECT_EQ(editor_.Column(0).txtRestrict, " Moon");
  EXPECT_FALSE(editor_.ListDirty());
}

TEST_F(RestrictListEditorTest, AClickOnNothingLeavesTheBox) {
  Load("0Moon\n");
  Write("mine");
  editor_.lstRestrict_Click(0, -1);
  editor_.lstRestrict_Click(0, 7);
  EXPECT_EQ(editor_.Column(0).txtRestrict, "mine");
  EXPECT_EQ(editor_.Column(0).Selected, -1);
}

TEST_F(RestrictListEditorTest, AnAddReplacesTheSelectedItemAndTheListStaysSorted) {
  Load("0Anna\n0Moon\n0Sun\n");
  editor_.lstRestrict_Click(0, 0);
  Enter("Zoe");
  EXPECT_THAT(List(0), ElementsAre("Moon", "Sun", "Zoe"));
  EXPECT_EQ(editor_.Column(0).Selected, -1);
  EXPECT_EQ(editor_.Column(0).txtRestrict, "");
}

TEST_F(RestrictListEditorTest, AnItemThatIsThereIsNotAddedAgainButTheBoxIsEmptied) {
  Load("0Moon \n");
  Enter("Moon");
  EXPECT_THAT(List(0), ElementsAre("Moon "));
  EXPECT_EQ(editor_.Column(0).txtRestrict, "");
}

TEST_F(RestrictListEditorTest, ItemsThatDifferInCaseAreBothAddedAndTheSaveKeepsTheFirst) {
  editor_.Load();
  Enter("moon");
  Enter("Sun");
  Enter("Moon");
  Enter("MOON");
  EXPECT_THAT(List(0), ElementsAre("moon", "Moon", "MOON", "Sun"));
  EXPECT_TRUE(editor_.cmdSave());
  EXPECT_EQ(files_.Text(kPath), "0moon\n0Sun\n");
}

TEST_F(RestrictListEditorTest, APastedLineEndMakesNoSecondEntry) {
  editor_.Load();
  Enter("Moon\n3Sun");
  EXPECT_THAT(List(0), ElementsAre("Moon 3Sun"));
}

TEST_F(RestrictListEditorTest, DeleteTakesTheSelectedItem) {
  Load("0Moon\n0Sun\n");
  editor_.lstRestrict_Click(0, 0);
  editor_.cmdDelete(0);
  EXPECT_THAT(List(0), ElementsAre("Sun"));
  EXPECT_EQ(editor_.Column(0).txtRestrict, "");
  EXPECT_EQ(editor_.Column(0).Selected, -1);
  EXPECT_TRUE(editor_.ListDirty());
}

TEST_F(RestrictListEditorTest, DeleteWithoutASelectionEmptiesTheBoxAlone) {
  Load("0Moon\n");
  Write("Moon");
  editor_.cmdDelete(0);
  EXPECT_THAT(List(0), ElementsAre("Moon"));
  EXPECT_EQ(editor_.Column(0).txtRestrict, "");
  EXPECT_TRUE(editor_.ListDirty());
}

TEST_F(RestrictListEditorTest, ClearAsksAndEmptiesOneList) {
  Load("0Moon\n1Song\n");
  dialogs_.Answer = platform::MessageAnswer::No;
  editor_.cmdClear(0);
  EXPECT_THAT(List(0), ElementsAre("Moon"));
  dialogs_.Answer = platform::MessageAnswer::Yes;
  editor_.lstRestrict_Click(0, 0);
  editor_.cmdClear(0);
  EXPECT_THAT(List(0), IsEmpty());
  EXPECT_THAT(List(1), ElementsAre("Song"));
  EXPECT_EQ(editor_.Column(0).Selected, -1);
  ASSERT_EQ(dialogs_.Shown.size(), 2U);
  EXPECT_EQ(dialogs_.Shown[0].Title, "Clear List");
  EXPECT_EQ(dialogs_.Shown[0].Text, "This will delete the entire list, are you sure?");
  EXPECT_EQ(dialogs_.Shown[0].Icon, platform::MessageIcon::Question);
  EXPECT_EQ(dialogs_.Shown[0].Buttons, platform::MessageButtons::YesNo);
}

TEST_F(RestrictListEditorTest, AClearAloneIsLostOnCancelWithoutAQuestion) {
  Load("0Moon\n");
  dialogs_.Answer = platform::MessageAnswer::Yes;
  editor_.cmdClear(0);
  dialogs_.Shown.clear();
  EXPECT_TRUE(editor_.MayClose());
  EXPECT_THAT(dialogs_.Shown, IsEmpty());
  EXPECT_EQ(files_.Text(kPath), "0Moon\n");
}

TEST_F(RestrictListEditorTest, SaveWritesTheListsInTheirOrderAndTheyTakeEffect) {
  Load("3Title\n0Sun\n1Song\n2Bad\n0Moon\n");
  EXPECT_TRUE(editor_.cmdSave());
  EXPECT_EQ(files_.Text(kPath), "0Moon\n0Sun\n1Song\n2Bad\n3Title\n");
  EXPECT_TRUE(lists_.IsInGrabList("Moon", ""));
  EXPECT_TRUE(lists_.IsInKillList("", "Title"));
}

TEST_F(RestrictListEditorTest, ASaveThatFailsLeavesTheChangesToTheUser) {
  Load("0Moon\n");
  Enter("Sun");
  files_.FailAlways(FileOperation::Replace);
  EXPECT_FALSE(editor_.cmdSave());
  EXPECT_TRUE(editor_.ListDirty());
  EXPECT_THAT(List(0), ElementsAre("Moon", "Sun"));
  EXPECT_EQ(files_.Text(kPath), "0Moon\n");
  EXPECT_THAT(dialogs_.Shown, IsEmpty());
  EXPECT_THAT(journal_.Log, ElementsAre(std::string("The Grab and Kill lists were not saved: ") + kPath +
                                        " could not be written"));
  dialogs_.Answer = platform::MessageAnswer::Yes;
  EXPECT_FALSE(editor_.MayClose());
}

TEST_F(RestrictListEditorTest, ACloseWithChangesAsks) {
  Load("0Moon\n");
  Enter("Sun");
  dialogs_.Answer = platform::MessageAnswer::Cancel;
  EXPECT_FALSE(editor_.MayClose());
  dialogs_.Answer = platform::MessageAnswer::No;
  EXPECT_TRUE(editor_.MayClose());
  EXPECT_EQ(files_.Text(kPath), "0Moon\n");
  dialogs_.Answer = platform::MessageAnswer::Yes;
  EXPECT_TRUE(editor_.MayClose());
  EXPECT_EQ(files_.Text(kPath), "0Moon\n0Sun\n");
  ASSERT_EQ(dialogs_.Shown.size(), 3U);
  EXPECT_EQ(dialogs_.Shown[0].Title, "Save Grab/Kill Changes");
  EXPECT_EQ(dialogs_.Shown[0].Text, "You have made changes, do you want to save your changes first?");
  EXPECT_EQ(dialogs_.Shown[0].Icon, platform::MessageIcon::Question);
  EXPECT_EQ(dialogs_.Shown[0].Buttons, platform::MessageButtons::YesNoCancel);
}

TEST_F(RestrictListEditorTest, AnEntryFromElsewhereLeavesTheSelectionOnItsItem) {
  Load("0Moon\n0Sun\n");
  editor_.lstRestrict_Click(0, 1);
  editor_.AddItem(schedule::RestrictList::GrabArtists, "Anna");
  EXPECT_THAT(List(0), ElementsAre("Anna", "Moon", "Sun"));
  EXPECT_EQ(editor_.Column(0).Selected, 2);
  editor_.AddItem(schedule::RestrictList::GrabArtists, "Zoe");
  EXPECT_EQ(editor_.Column(0).Selected, 2);
  EXPECT_FALSE(editor_.ListDirty());
}

TEST_F(RestrictListEditorTest, TheListsKnowWhetherTheyAreEdited) {
  EXPECT_FALSE(lists_.BeingEdited());
  editor_.Load();
  EXPECT_TRUE(lists_.BeingEdited());
  EXPECT_TRUE(lists_.Add(schedule::RestrictList::GrabArtists, "Anna").Ok());
  EXPECT_THAT(List(0), ElementsAre("Anna"));
  editor_.Unload();
  EXPECT_FALSE(lists_.BeingEdited());
  EXPECT_TRUE(lists_.Add(schedule::RestrictList::GrabArtists, "Zoe").Ok());
  EXPECT_THAT(List(0), IsEmpty());
}

TEST_F(RestrictListEditorTest, EachUnitEditsItsOwnFile) {
  lists_.SetMultiUnit("2");
  editor_.Load();
  Enter("Moon");
  EXPECT_TRUE(editor_.cmdSave());
  EXPECT_EQ(files_.Text("/home/user/Application Data/Kestrune/Restriction2.txt"), "0Moon\n");
  EXPECT_FALSE(files_.Exists(kPath));
}

TEST_F(RestrictListEditorTest, AFileThatCouldNotBeReadIsNeverReplaced) {
  files_.Put(kPath, "0Moon\n");
  files_.FailNext(FileOperation::Read);
  editor_.Load();
  EXPECT_THAT(journal_.Log, ElementsAre(std::string("The Grab and Kill lists cannot be edited: ") + kPath +
                                        " could not be read"));
  Enter("Sun");
  EXPECT_FALSE(editor_.cmdSave());
  EXPECT_EQ(files_.Text(kPath), "0Moon\n");
  EXPECT_EQ(journal_.Log.back(), std::string("The Grab and Kill lists were not saved: ") + kPath +
                                     " could not be read when the window opened");
  editor_.Load();
  Enter("Sun");
  EXPECT_TRUE(editor_.cmdSave());
  EXPECT_EQ(files_.Text(kPath), "0Moon\n0Sun\n");
}

TEST_F(RestrictListEditorTest, ByteOrderMarksCostNoEntry) {
  Load(
      "\xEF\xBB\xBF"
      "0Moon\n\xEF\xBB\xBF"
      "0Sun\n");
  EXPECT_THAT(List(0), ElementsAre("Moon", "Sun"));
  EXPECT_TRUE(editor_.cmdSave());
  EXPECT_EQ(files_.Text(kPath), "0Moon\n0Sun\n");
}

}  // namespace
}  // namespace kestrune::test
