#include <algorithm>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "recorder/Recovery.h"
#include "support/UnitRig.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;
using platform::MendedCapture;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::IsSupersetOf;
using ::testing::Not;
using ::testing::UnorderedElementsAre;
using State = platform::MendedCapture::State;

TEST(IsTemporaryName, OfOneUnitAndItsFormatsAlone) {
  for (const char* name : {"Capture0.mp3", "Capture1.wav", "Capture2.ogg", "Capture99.raw", "Capture13.vox",
                           "Capture1.g726", "Capture0.flac", "Capture1.opus"}) {
    EXPECT_TRUE(recorder::IsTemporaryName(name, "")) << name;
  }
  for (const char* name : {"Capture.mp3", "Captured.mp3", "Capture0.txt", "Capture0", "Capture0.",
                           "Capture0mp3", "Capture0-2.mp3", "Capture0.mp3.bak", "Capture0.MP3",
                           "Capture2026.mp3", "capture0.mp3", "Capture0 1.mp3", ""}) {
    EXPECT_FALSE(recorder::IsTemporaryName(name, "")) << name;
  }
  EXPECT_TRUE(recorder::IsTemporaryName("Capture0-2.mp3", "2"));
  EXPECT_FALSE(recorder::IsTemporaryName("Capture0-3.mp3", "2"));
  EXPECT_FALSE(recorder::IsTemporaryName("Capture0-22.mp3", "2"));
  EXPECT_FALSE(recorder::IsTemporaryName("Capture0.mp3", "2"));
}

class RecoveryTest : public ::testing::Test {
 protected:
  RecoveryTest() { rig.Set("FilenameFormat", "%a - %s"); }

  MendedCapture& Left(const std::string& path, State state) {
    rig.Files.Put(path, "left: " + path);
    MendedCapture& mended = rig.CaptureMender.Answers[path];
    mended.Is = state;
    mended.Written = base::DateValue::FromCivil(2004, 12, 31, 3, 4, 5);
    return mended;
  }
  int Mended(std::string_view path) const {
    return static_cast<int>(std::count(rig.CaptureMender.Calls.begin(), rig.CaptureMender.Calls.end(),
                                       "Mend " + std::string(path)));
  }

  UnitRig rig;
};

TEST_F(RecoveryTest, AWholeCaptureMovesUnderItsTimeAndTheLogSaysHowLongItIs) {
  Left("/music/Rock/Capture0.mp3", State::Whole).LengthMs = 185999;
  rig.StartIdle();
  EXPECT_EQ(rig.Files.Text("/music/Recovered/Recovered 2004-12-31 03-04-05.mp3"),
            "left: /music/Rock/Capture0.mp3");
  EXPECT_THAT(rig.Recordings(), Not(Contains("Rock/Capture0.mp3")));
  EXPECT_THAT(rig.LogTexts(),
              Contains("Recovered \"/music/Recovered/Recovered 2004-12-31 03-04-05.mp3\" (3:05) from "
                       "a run that ended without closing it"));
  EXPECT_THAT(rig.FileSync.Synced, ElementsAre("/music/Recovered/Recovered 2004-12-31 03-04-05.mp3"));
}

TEST_F(RecoveryTest, ItsTagsGiveItsNameWhichStaysInTheFolder) {
  MendedCapture& mended = Left("/music/Capture1.mp3", State::Whole);
  mended.Artist = "../AC/DC";
  mended.Title = "What's It?";
  rig.StartIdle();
  EXPECT_THAT(rig.Recordings(), Contains("Recovered/---AC-DC - What's It-.mp3"))
      << ::testing::PrintToString(rig.Recordings());
}

TEST_F(RecoveryTest, RawSamplesHaveNoLength) {
  Left("/music/Capture0.raw", State::Whole);
  rig.StartIdle();
  EXPECT_THAT(rig.LogTexts(),
              Contains("Recovered \"/music/Recovered/Recovered 2004-12-31 03-04-05.raw\" from a run "
                       "that ended without closing it"));
}

TEST_F(RecoveryTest, NothingIsReplaced) {
  rig.Files.Put("/music/Recovered/Recovered 2004-12-31 03-04-05.mp3", "older");
  Left("/music/Capture0.mp3", State::Whole);
  Left("/music/Capture1.mp3", State::Whole);
  rig.StartIdle();
  EXPECT_EQ(rig.Files.Text("/music/Recovered/Recovered 2004-12-31 03-04-05.mp3"), "older");
  EXPECT_EQ(rig.Files.Text("/music/Recovered/Recovered 2004-12-31 03-04-05 (2).mp3"),
            "left: /music/Capture0.mp3");
  EXPECT_EQ(rig.Files.Text("/music/Recovered/Recovered 2004-12-31 03-04-05 (3).mp3"),
            "left: /music/Capture1.mp3");
}

TEST_F(RecoveryTest, AnEmptyCaptureGoesWithoutAWord) {
  Left("/music/Capture0.mp3", State::Empty);
  rig.StartIdle();
  EXPECT_EQ(rig.Files.Text("/music/Capture0.mp3"), "(absent)");
  EXPECT_FALSE(rig.Files.IsFolder("/music/Recovered"));
  EXPECT_FALSE(rig.Logged("Recovered"));
}

TEST_F(RecoveryTest, WhatCannotBeMendedIsKeptAsItIsAndSaid) {
  Left("/music/Capture0.wav", State::Not).Cause = "it is not a capture of its format";
  rig.StartIdle();
  EXPECT_EQ(rig.Files.Text("/music/Recovered/Recovered 2004-12-31 03-04-05.wav"),
            "left: /music/Capture0.wav");
  EXPECT_TRUE(rig.Logged(
      "Cannot mend a capture of a run that ended without closing it, kept as "
      "\"/music/Recovered/Recovered 2004-12-31 03-04-05.wav\": it is not a capture of its format"));
}

TEST_F(RecoveryTest, WhatAnotherProcessHoldsAndWhatIsNoCaptureStays) {
  Left("/music/Capture0.wav", State::Untouched);
  rig.Files.HoldByAnother("/music/Capture0.wav");
  Left("/music/Capture0-2.wav", State::Whole);
  Left("/music/Capture the Flag.wav", State::Whole);
  rig.StartIdle();
  EXPECT_THAT(rig.Recordings(), IsSupersetOf({"Capture0-2.wav", "Capture0.wav", "Capture the Flag.wav"}));
  EXPECT_EQ(rig.Files.Text("/music/Capture0.wav"), "left: /music/Capture0.wav");
  EXPECT_EQ(Mended("/music/Capture0-2.wav"), 0);
}

TEST_F(RecoveryTest, WhatWasHeldForAMomentIsNotReplacedAfterwards) {
  const std::vector<std::string> held = {"/music/Capture0.wav", "/music/Capture1.wav"};
  for (const std::string& path : held) Left(path, State::Untouched);
  rig.StartIdle();
  for (const char* song : {"One", "Two", "Three"}) {
    rig.NextSong("Artist", song);
    rig.Run(1min);
  }
  for (const std::string& path : held) EXPECT_EQ(rig.Files.Text(path), "left: " + path);
  EXPECT_THAT(rig.Recordings(), Contains("Capture2.wav"));
}

TEST_F(RecoveryTest, ANamedUnitTakesItsOwn) {
  rig.Environment.Command = "/multi 2";
  for (const auto& [key, value] : std::map<std::string, std::string>{{"FileDir", "/music/"},
                                                                     {"CheckUpdatesAtStartup", "False"},
                                                                     {"LegalAgreement", "True"},
                                                                     {"ShelfSongs", "0"},
                                                                     {"PortNum", "1"}}) {
    rig.Store.Put("Lorimel", "Kestrune2", key, value);
  }
  Left("/music/Capture0-2.mp3", State::Whole);
  Left("/music/Capture0.mp3", State::Whole);
  rig.Start();
  rig.Run(10s);
  EXPECT_THAT(rig.Recordings(),
              IsSupersetOf({"Capture0.mp3", "Recovered/Recovered 2004-12-31 03-04-05.mp3"}));
  EXPECT_EQ(Mended("/music/Capture0.mp3"), 0);
}

/// Its first capture wants the very name of the leftover, and begins while that is mended.
TEST_F(RecoveryTest, NoCaptureOfThisRunTakesThePlaceOfALeftoverThatWaits) {
  for (int number = 0; number < 1000; ++number) {
    const std::string folder = "/music/" + std::to_string(number);
    Left(folder + "/Capture0.wav", State::Whole);
  }
  Left("/music/Capture1.wav", State::Whole).LengthMs = 60000;
  rig.StartIdle();
  EXPECT_EQ(rig.Files.Text("/music/Capture1.wav"), "left: /music/Capture1.wav");
  EXPECT_TRUE(rig.Logged("\"/music/Capture1.wav\" is in use, capturing to \"/music/Capture3.wav\" instead"));
  rig.CloseAndWait();
  EXPECT_EQ(rig.Files.Text("/music/Capture1.wav"), "left: /music/Capture1.wav") << "the next start finds it";
}

TEST_F(RecoveryTest, NoCaptureOfThisRunTakesThePlaceOfALeftoverThatASearchMayHaveMissed) {
  rig.CaptureMender.Looked = base::Result::Failed("Input/output error");
  rig.Files.Put("/music/Capture0.wav", "of an earlier run");
  rig.Files.Put("/music/Capture1.wav", "of an earlier run");
  rig.StartIdle();
  rig.NextSong("A", "1");
  rig.NextSong("B", "2");
  rig.CloseAndWait();
  EXPECT_EQ(rig.Files.Text("/music/Capture0.wav") + rig.Files.Text("/music/Capture1.wav"),
            "of an earlier runof an earlier run");
  EXPECT_THAT(rig.LogTexts(),
              Contains("Cannot look for captures of an earlier run in \"/music/\": Input/output "
                       "error; what is there stays"));
}

TEST_F(RecoveryTest, WhatCannotBeMovedToTheFolderStaysInItsOwn) {
  rig.Files.Put("/music/Recovered", "a file of that name");
  Left("/music/Rock/Capture0.wav", State::Whole);
  rig.StartIdle();
  EXPECT_EQ(rig.Files.Text("/music/Rock/Recovered 2004-12-31 03-04-05.wav"),
            "left: /music/Rock/Capture0.wav");
}

TEST_F(RecoveryTest, WhatCannotBeMovedAtAllIsNoLeftoverForThisRun) {
  Left("/music/Capture1.wav", State::Whole);
  rig.Files.FailNext(FileOperation::Rename, 2);
  rig.StartIdle();
  rig.NextSong("Lanterns", "North Pier");
  rig.NextSong("Cellar", "Blue Door");
  rig.CloseAndWait();
  EXPECT_EQ(rig.Files.Text("/music/Capture1.wav"), "left: /music/Capture1.wav");
}

TEST_F(RecoveryTest, TheStartDoesNotWaitForIt) {
  Left("/music/Capture0.mp3", State::Whole);
  rig.Start();
  const auto with = rig.Loop.SteadyNow();
  UnitRig other;
  other.Start();
  EXPECT_EQ(with, other.Loop.SteadyNow());
}

TEST_F(RecoveryTest, WithoutTheWatchLeftoversMeetWhatTheyMetBefore) {
  rig.Set("Watch", "False");
  Left("/music/Capture1.wav", State::Whole);
  Left("/music/Capture0.mp3", State::Whole);
  rig.StartIdle();
  EXPECT_THAT(rig.CaptureMender.Calls, Not(Contains(::testing::StartsWith("Find"))));
  EXPECT_THAT(rig.Recordings(), UnorderedElementsAre("Capture0.mp3", "Capture1.wav"));
  EXPECT_NE(rig.Files.Text("/music/Capture1.wav"), "left: /music/Capture1.wav") << "the new capture's";
  rig.CloseAndWait();
  EXPECT_THAT(rig.Recordings(), IsEmpty());
}

}  // namespace
}  // namespace kestrune::test
