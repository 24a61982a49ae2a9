#include <random>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/Text.h"
#include "schedule/lists/Restrictions.h"
#include "support/FakeEnvironment.h"
#include "support/MemoryFiles.h"
#include "support/RecordingJournal.h"

namespace kestrune::test {
namespace {

using schedule::RestrictList;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class RestrictionsTest : public ::testing::Test {
 protected:
  static constexpr const char* kFolder = "/home/user/Application Data/Kestrune";
  static constexpr const char* kPath = "/home/user/Application Data/Kestrune/Restriction.txt";

  void Load(std::string_view text) {
    files_.Put(kPath, text);
    lists_.LoadRestrictions();
  }

  MemoryFiles files_;
  FakeEnvironment environment_;
  RecordingJournal journal_;
  schedule::Restrictions lists_{files_, environment_, journal_};
};

TEST_F(RestrictionsTest, TheFileIsNamedAfterTheUnit) {
  EXPECT_EQ(lists_.RestrictionFile(), kPath);
  lists_.SetMultiUnit("2");
  EXPECT_EQ(lists_.RestrictionFile(), "/home/user/Application Data/Kestrune/Restriction2.txt");
}

TEST_F(RestrictionsTest, EachUnitHasItsOwnLists) {
  files_.Put(kPath, "0Moon\n");
  files_.Put("/home/user/Application Data/Kestrune/Restriction2.txt", "0Sun\n");
  lists_.SetMultiUnit("2");
  lists_.LoadRestrictions();
  EXPECT_TRUE(lists_.IsInGrabList("Sun", ""));
  EXPECT_FALSE(lists_.IsInGrabList("Moon", ""));
}

TEST_F(RestrictionsTest, WithoutAFileNothingIsOnAnyList) {
  lists_.LoadRestrictions();
  EXPECT_FALSE(lists_.IsInGrabList("Artist", "Song"));
  EXPECT_FALSE(lists_.IsInKillList("Artist", "Song"));
  EXPECT_FALSE(lists_.IsInGrabList("", ""));
  EXPECT_FALSE(lists_.IsInKillList("", ""));
}

TEST_F(RestrictionsTest, TheFolderIsMadeByALoad) {
  lists_.LoadRestrictions();
  EXPECT_TRUE(files_.IsFolder(kFolder));
}

TEST_F(RestrictionsTest, AFolderThatCannotBeMadeMeansEmptyLists) {
  files_.FailAlways(FileOperation::CreateFolder);
  lists_.LoadRestrictions();
  EXPECT_FALSE(lists_.IsInGrabList("Artist", "Song"));
  EXPECT_EQ(lists_.RestrictCount(RestrictList::GrabArtists), 0);
}

TEST_F(RestrictionsTest, EachDigitFeedsItsOwnList) {
  Load("3Talk\n2Noise\n1Night\n0Moon\n");
  EXPECT_TRUE(lists_.IsInGrabList("Moon", ""));
  EXPECT_FALSE(lists_.IsInGrabList("", "Moon"));
  EXPECT_TRUE(lists_.IsInGrabList("", "Night"));
  EXPECT_FALSE(lists_.IsInGrabList("Night", ""));
  EXPECT_TRUE(lists_.IsInKillList("Noise", ""));
  EXPECT_FALSE(lists_.IsInKillList("", "Noise"));
  EXPECT_TRUE(lists_.IsInKillList("", "Talk"));
  EXPECT_FALSE(lists_.IsInKillList("Talk", ""));
  EXPECT_FALSE(lists_.IsInGrabList("Noise", "Talk"));
  EXPECT_FALSE(lists_.IsInKillList("Moon", "Night"));
}

TEST_F(RestrictionsTest, LinesThatAreNoEntriesAreSkipped) {
  Load("\n4Moon\n/Moon\n:Moon\n Moon\nMoon\n-0Moon\n0Sun");
  EXPECT_FALSE(lists_.IsInGrabList("Moon", "Moon"));
  EXPECT_FALSE(lists_.IsInKillList("Moon", "Moon"));
  EXPECT_EQ(lists_.RestrictCount(RestrictList::GrabArtists), 1);
  EXPECT_TRUE(lists_.IsInGrabList("Sun", ""));
}

TEST_F(RestrictionsTest, RowsAreCountedFromOneInTheOrderOfTheFile) {
  Load("0b\n1x\n0a\r\n0 C \n");
  EXPECT_EQ(lists_.RestrictCount(RestrictList::GrabArtists), 3);
  EXPECT_EQ(lists_.Fragment(RestrictList::GrabArtists, 1), "b");
  EXPECT_EQ(lists_.Fragment(RestrictList::GrabArtists, 2), "a");
  EXPECT_EQ(lists_.Fragment(RestrictList::GrabArtists, 3), " C ");
  EXPECT_EQ(lists_.Fragment(RestrictList::GrabArtists, 0), "");
  EXPECT_EQ(lists_.Fragment(RestrictList::GrabArtists, 4), "");
  EXPECT_EQ(lists_.Fragment(RestrictList::GrabArtists, -1), "");
}

TEST_F(RestrictionsTest, ALoadReplacesWhatWasThere) {
  Load("0Moon\n");
  Load("0Sun\n");
  EXPECT_FALSE(lists_.IsInGrabList("Moon", ""));
  EXPECT_TRUE(lists_.IsInGrabList("Sun", ""));
}

TEST_F(RestrictionsTest, AChangeOfTheFileIsSeenAtTheNextLoadOnly) {
  Load("0Moon\n");
  files_.Put(kPath, "0Sun\n");
  EXPECT_TRUE(lists_.IsInGrabList("Moon", ""));
  EXPECT_FALSE(lists_.IsInGrabList("Sun", ""));
}

TEST_F(RestrictionsTest, TheFragmentIsSoughtInTheArtistAndNeverTheReverse) {
  Load("0Moon\n");
  EXPECT_TRUE(lists_.IsInGrabList("The Moonlighters", ""));
  Load("0The Moonlighters\n");
  EXPECT_FALSE(lists_.IsInGrabList("Moonlighters", ""));
}

TEST_F(RestrictionsTest, CaseDoesNotCount) {
  Load("0mOON\n1\xC3\x89toile\n");  // the second begins with a capital E with acute
  EXPECT_TRUE(lists_.IsInGrabList("FULL MOON", ""));
  EXPECT_TRUE(lists_.IsInGrabList("", "une \xC3\xA9TOILE"));
}

TEST_F(RestrictionsTest, ThereAreNoWildcards) {
  Load("0M*n\n1M..n\n");
  EXPECT_FALSE(lists_.IsInGrabList("Moon", "Moon"));
  EXPECT_TRUE(lists_.IsInGrabList("m*n", ""));
}

TEST_F(RestrictionsTest, AnEmptyFragmentPassesEverySongThatHasAnArtist) {
  Load("0\n");
  EXPECT_TRUE(lists_.IsInGrabList("A", ""));
  EXPECT_TRUE(lists_.IsInGrabList(" ", ""));
  EXPECT_FALSE(lists_.IsInGrabList("", "Song"));
}

TEST_F(RestrictionsTest, TheBlankMarkerMatchesAnEmptyArtistAndOneOfBlanks) {
  Load("0{Blank}\n");
  EXPECT_TRUE(lists_.IsInGrabList("", "Song"));
  EXPECT_TRUE(lists_.IsInGrabList("   ", "Song"));
  EXPECT_FALSE(lists_.IsInGrabList("Moon", ""));
}

TEST_F(RestrictionsTest, TheBlankMarkerMatchesAnEmptySongOnAListOfSongs) {
  Load("3{Blank}\n");
  EXPECT_TRUE(lists_.IsInKillList("Moon", ""));
  EXPECT_FALSE(lists_.IsInKillList("", "Song"));
}

TEST_F(RestrictionsTest, TheMarkerInLowerCaseIsAnOrdinaryFragment) {
  Load("0{blank}\n");
  EXPECT_FALSE(lists_.IsInGrabList("", ""));
  EXPECT_FALSE(lists_.IsInGrabList("   ", ""));
  EXPECT_TRUE(lists_.IsInGrabList("the {BLANK} ones", ""));
}

TEST_F(RestrictionsTest, TheMarkerWithATrailingBlankIsAnOrdinaryFragment) {
  Load("0{Blank} \n");
  EXPECT_FALSE(lists_.IsInGrabList("", ""));
}

TEST_F(RestrictionsTest, TheMarkerIsAnOrdinaryFragmentTooInAnArtistThatHoldsIt) {
  Load("0{Blank}\n");
  EXPECT_TRUE(lists_.IsInGrabList("the {BLANK} ones", ""));
}

TEST_F(RestrictionsTest, FragmentsKeepTheirBlanks) {
  Load("0Moon \n");
  EXPECT_FALSE(lists_.IsInGrabList("Moon", ""));
  EXPECT_TRUE(lists_.IsInGrabList("Moon Man", ""));
}

TEST_F(RestrictionsTest, AFullListTakesItsFirstThousandAndLaterLinesOfOthersLoad) {
  std::string text;
  for (int i = 1; i <= 1005; ++i) text += "3song " + std::to_string(i) + ".\n";
  text += "0Moon\n";
  Load(text);
  EXPECT_EQ(lists_.RestrictCount(RestrictList::KillSongs), 1000);
  EXPECT_TRUE(lists_.IsInKillList("", "song 1000."));
  EXPECT_FALSE(lists_.IsInKillList("", "song 1001."));
  EXPECT_TRUE(lists_.IsInGrabList("Moon", ""));
}

// The lists fold their fragments once, at load; that must answer as a search without regard to case does.
TEST_F(RestrictionsTest, AnswersAsASearchWithoutRegardToCase) {
  const unsigned seed = std::random_device{}();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  const std::string letters[] = {"a", "A", "b", " ", "\xC3\x89", "\xC3\xA9", "\xC5\xB8", "\xC3\xBF"};
  const auto word = [&](std::size_t most) {
    std::string text;
    for (std::size_t n = random() % (most + 1); n > 0; --n) text += letters[random() % std::size(letters)];
    return text;
  };
  for (int i = 0; i < 500; ++i) {
    const std::string fragment = word(3);
    const std::string artist = word(12);
    Load("2" + fragment + "\n");
    EXPECT_EQ(lists_.IsInKillList(artist, ""), base::ContainsNoCase(artist, fragment))
        << '"' << fragment << "\" in \"" << artist << '"';
  }
}

TEST_F(RestrictionsTest, ARemovalTakesEachEqualEntryOfOneListAndLeavesAllOtherLines) {
  Load("0Moon\r\nrubbish\n0moon \n2Moon\n0Moonlight\n\n0Moon");
  EXPECT_EQ(lists_.Remove(RestrictList::GrabArtists, " MOON ").Count, 3);
  EXPECT_EQ(files_.Read(kPath), "rubbish\n2Moon\n0Moonlight\n\n");
  EXPECT_EQ(lists_.RestrictCount(RestrictList::GrabArtists), 1);
  EXPECT_EQ(lists_.RestrictCount(RestrictList::KillArtists), 1);
}

TEST_F(RestrictionsTest, WhatIsNotThereIsNotRemoved) {
  EXPECT_EQ(lists_.Remove(RestrictList::GrabArtists, "Moon").Count, 0) << "without a file";
  Load("0Moon");
  EXPECT_EQ(lists_.Remove(RestrictList::GrabSongs, "Moon").Count, 0);
  EXPECT_EQ(files_.Read(kPath), "0Moon") << "the file is not touched";
}

TEST_F(RestrictionsTest, ARemovalThatCannotBeWrittenChangesNothing) {
  Load("0Moon\n");
  files_.FailAlways(FileOperation::Replace);
  const std::string why = std::string("the list file ") + kPath + " could not be written";
  EXPECT_EQ(lists_.Remove(RestrictList::GrabArtists, "Moon").Failure, why);
  EXPECT_THAT(journal_.Log, ElementsAre("Nothing was removed from the Grab and Kill lists: " + why));
  EXPECT_TRUE(lists_.IsInGrabList("Moon", ""));
}

TEST_F(RestrictionsTest, AReadThatFailsKeepsTheRowsAndIsLogged) {
  Load("0Moon\n3Rain\n");
  files_.FailNext(FileOperation::Read);
  lists_.LoadRestrictions();
  EXPECT_TRUE(lists_.IsInGrabList("Moon", ""));
  EXPECT_TRUE(lists_.IsInKillList("", "Rain"));
  EXPECT_THAT(journal_.Log, ElementsAre(std::string("The Grab and Kill lists stay as they are: ") + kPath +
                                        " could not be read"));
}

TEST_F(RestrictionsTest, AFileThatIsGoneEmptiesTheLists) {
  Load("0Moon\n");
  ASSERT_TRUE(files_.Remove(kPath));
  lists_.LoadRestrictions();
  EXPECT_FALSE(lists_.IsInGrabList("Moon", ""));
  EXPECT_THAT(journal_.Log, IsEmpty());
}

TEST_F(RestrictionsTest, AByteOrderMarkIsNoPartOfTheFirstEntry) {
  Load(
      "\xEF\xBB\xBF"
      "0Moon\n0Sun\n");
  EXPECT_EQ(lists_.Fragment(RestrictList::GrabArtists, 1), "Moon");
  EXPECT_EQ(lists_.RestrictCount(RestrictList::GrabArtists), 2);
}

TEST_F(RestrictionsTest, ARemovalBeforeAByteOrderMarkChangesNoOtherList) {
  Load(
      "3Sun\n\xEF\xBB\xBF"
      "0Moon\n");
  EXPECT_EQ(lists_.RestrictCount(RestrictList::GrabArtists), 1);
  EXPECT_EQ(lists_.Remove(RestrictList::KillSongs, "Sun").Count, 1);
  EXPECT_EQ(lists_.RestrictCount(RestrictList::GrabArtists), 1);
}

TEST_F(RestrictionsTest, NeitherDoesOneBeforeTwoMarks) {
  Load(
      "3Sun\n\xEF\xBB\xBF\xEF\xBB\xBF"
      "0Moon\n");
  EXPECT_EQ(lists_.RestrictCount(RestrictList::GrabArtists), 1);
  EXPECT_EQ(lists_.Remove(RestrictList::KillSongs, "Sun").Count, 1);
  EXPECT_EQ(lists_.RestrictCount(RestrictList::GrabArtists), 1);
}

TEST_F(RestrictionsTest, ARemovalFromAFileThatCannotBeReadIsAFailureAndNotAnAbsentEntry) {
  Load("0Moon\n");
  files_.FailNext(FileOperation::Read);
  EXPECT_EQ(lists_.Remove(RestrictList::GrabArtists, "Moon").Failure,
            std::string("the list file ") + kPath + " could not be read");
  EXPECT_EQ(files_.Text(kPath), "0Moon\n");
}

}  // namespace
}  // namespace kestrune::test
