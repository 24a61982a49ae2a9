#include <algorithm>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "presenters/ConfigurationRig.h"

namespace kestrune::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

class ConfigurationTest : public ::testing::Test {
 protected:
  ConfigurationTest() { rig_.Settings.FileDir = "/music/"; }

  void ChooseMin(std::string_view text) { window_.cboMinLength(RowOf(Shown().cboMinLength, text)); }
  void ChooseMax(std::string_view text) { window_.cboMaxLength(RowOf(Shown().cboMaxLength, text)); }
  void ChooseFormat(std::string_view code) { window_.cboFileFormat(RowOf(Shown().cboFileFormat, code)); }
  [[nodiscard]] const presenters::ConfigurationControls& Shown() const { return window_.Controls(); }

  ConfigurationRig rig_;
  presenters::Configuration& window_ = rig_.Window;
};

std::vector<std::string> Texts(const presenters::ChoiceList& list) {
  std::vector<std::string> texts;
  for (const presenters::ChoiceRow& row : list.Rows) texts.push_back(row.Text);
  return texts;
}

TEST_F(ConfigurationTest, TheMinimumLengthsAreSecondsFromTwoOnAndNone) {
  window_.Load();
  const std::vector<std::string> told{
      "None",   "2 Sec",  "3 Sec",  "4 Sec",  "5 Sec",   "6 Sec",   "7 Sec",   "8 Sec",   "9 Sec",
      "10 Sec", "11 Sec", "12 Sec", "13 Sec", "14 Sec",  "15 Sec",  "20 Sec",  "25 Sec",  "30 Sec",
      "35 Sec", "40 Sec", "45 Sec", "50 Sec", "55 Sec",  "60 Sec",  "65 Sec",  "70 Sec",  "75 Sec",
      "80 Sec", "85 Sec", "90 Sec", "95 Sec", "100 Sec", "105 Sec", "110 Sec", "115 Sec", "120 Sec"};
  EXPECT_EQ(Texts(Shown().cboMinLength), told);
  for (const presenters::ChoiceRow& row : Shown().cboMinLength.Rows) {
    EXPECT_EQ(row.Value, row.Text == "None" ? 0 : std::stoi(row.Text)) << row.Text;
  }
  EXPECT_EQ(Shown().cboMinLength.Text(), "45 Sec");
}

TEST_F(ConfigurationTest, TheMaximumLengthsAreHalfMinutesAndUnlimited) {
  window_.Load();
  const std::vector<std::string> told{
      "Unlimited", ".5 Min",   "1.0 Min",  "1.5 Min",  "2.0 Min",  "2.5 Min",  "3.0 Min",  "3.5 Min",
      "4.0 Min",   "4.5 Min",  "5.0 Min",  "5.5 Min",  "6.0 Min",  "6.5 Min",  "7.0 Min",  "7.5 Min",
      "8.0 Min",   "8.5 Min",  "9.0 Min",  "9.5 Min",  "10.0 Min", "10.5 Min", "11.0 Min", "11.5 Min",
      "12.0 Min",  "12.5 Min", "13.0 Min", "13.5 Min", "14.0 Min", "14.5 Min", "15.0 Min"};
  EXPECT_EQ(Texts(Shown().cboMaxLength), told);
  int value = 0;
  for (const presenters::ChoiceRow& row : Shown().cboMaxLength.Rows) {
    EXPECT_EQ(row.Value, value) << row.Text;
    value += 30;
  }
  EXPECT_EQ(Shown().cboMaxLength.Text(), "Unlimited");
}

TEST_F(ConfigurationTest, TheSongDelaysAreHundredsToFiveThousand) {
  window_.Load();
  ASSERT_EQ(Shown().cboSongDelay.Rows.size(), 51U);
  for (int i = 0; i <= 50; ++i) {
    const auto& row = Shown().cboSongDelay.Rows[static_cast<std::size_t>(i)];
    EXPECT_EQ(row, (presenters::ChoiceRow{std::to_string(i * 100), i * 100}));
  }
  EXPECT_EQ(Shown().cboSongDelay.Text(), "600");
}

TEST_F(ConfigurationTest, TheFileFormatsStandInTheirOrder) {
  window_.Load();
  EXPECT_THAT(Texts(Shown().cboFileFormat),
              ElementsAre("MP3", "WAV", "VOX", "RAW", "G726", "OGG", "FLAC", "OPUS"));
  EXPECT_EQ(Shown().cboFileFormat.Text(), "MP3");
}

TEST_F(ConfigurationTest, EveryRowOfEveryListIsSelectedByItsSettingAndSavedFromIt) {
  window_.Load();
  rig_.Settings.MaxSongLength = 0;
  for (const presenters::ChoiceRow& row : std::vector(Shown().cboMinLength.Rows)) {
    rig_.Settings.MinSongLength = static_cast<std::int16_t>(row.Value);
    window_.Load();
    EXPECT_EQ(Shown().cboMinLength.Text(), row.Text);
    ChooseMin(row.Text);
    rig_.Settings.MinSongLength = 47;
    ASSERT_TRUE(window_.cmdSave());
    EXPECT_EQ(rig_.Settings.MinSongLength, row.Value);
  }
  rig_.Settings.MinSongLength = 0;
  for (const presenters::ChoiceRow& row : std::vector(Shown().cboMaxLength.Rows)) {
    rig_.Settings.MaxSongLength = static_cast<std::int16_t>(row.Value);
    window_.Load();
    EXPECT_EQ(Shown().cboMaxLength.Text(), row.Text);
    ChooseMax(row.Text);
    rig_.Settings.MaxSongLength = 47;
    ASSERT_TRUE(window_.cmdSave());
    EXPECT_EQ(rig_.Settings.MaxSongLength, row.Value);
  }
  for (const presenters::ChoiceRow& row : std::vector(Shown().cboSongDelay.Rows)) {
    rig_.Settings.SongDelay = static_cast<std::int16_t>(row.Value);
    window_.Load();
    EXPECT_EQ(Shown().cboSongDelay.Text(), row.Text);
    window_.cboSongDelay(Shown().cboSongDelay.Row);
    rig_.Settings.SongDelay = 47;
    ASSERT_TRUE(window_.cmdSave());
    EXPECT_EQ(rig_.Settings.SongDelay, row.Value);
  }
}

TEST_F(ConfigurationTest, LoadShowsTheSettings) {
  rig_.Settings.FilenameFormat = "%a";
  rig_.Settings.FileFormat = "WAV";
  rig_.Settings.AGCEnabled = true;
  rig_.Settings.SaveDuplicates = false;
  rig_.Settings.TaskBarMinimized = false;
  rig_.Settings.Watch = false;
  rig_.Settings.InputDevice = 3;
  rig_.Settings.ShelfFolder = "/music/shelf/";
  rig_.Settings.ShelfSongs = 7;
  rig_.Settings.ShelfMegabytes = 123456;
  rig_.Settings.Hints = true;
  rig_.Settings.FollowHints = true;
  rig_.Settings.NotifySongs = true;
  rig_.Settings.NotifyProblems = false;
  window_.Load();
  EXPECT_TRUE(Shown().chkNotifySongs);
  EXPECT_TRUE(Shown().chkNotifyEvents);
  EXPECT_FALSE(Shown().chkNotifyProblems);
  EXPECT_TRUE(Shown().chkNotifyHints);
  EXPECT_EQ(Shown().txtShelfFolder, "/music/shelf/");
  EXPECT_EQ(Shown().txtShelfSongs, "7");
  EXPECT_EQ(Shown().txtShelfMegabytes, "123456");
  EXPECT_TRUE(Shown().chkHints);
  EXPECT_TRUE(Shown().chkFollowHints);
  EXPECT_EQ(Shown().txtFileDir, "/music/");
  EXPECT_EQ(Shown().txtFilenameFormat, "%a");
  EXPECT_EQ(Shown().cboFileFormat.Text(), "WAV");
  EXPECT_TRUE(Shown().chkAGCEnabled);
  EXPECT_TRUE(Shown().AGCSpinsVisible);
  EXPECT_EQ(Shown().txtAGCLowLevel, "-10");
  EXPECT_EQ(Shown().txtAGCHighLevel, "-40");
  EXPECT_EQ(Shown().txtAGCAttackTime, "4");
  EXPECT_FALSE(Shown().chkDuplicates);
  EXPECT_FALSE(Shown().chkTaskBarMinimized);
  EXPECT_FALSE(Shown().chkWatch);
  EXPECT_EQ(Shown().cboDevice.Text(), "USB Audio CODEC");
  EXPECT_FALSE(window_.Dirty());
}

TEST_F(ConfigurationTest, LoadPreparesTheIdleSlotAndShowsItsDescription) {
  rig_.Settings.FileFormat = "WAV";
  window_.Load();
  EXPECT_THAT(rig_.Idle.Calls, ElementsAre("SetFormatWAV 44100 2 16"));
  EXPECT_EQ(Shown().lblFormatSpecifications, "SetFormatWAV 44100 2 16");
  EXPECT_EQ(rig_.Stops(), 0);
}

TEST_F(ConfigurationTest, TheDevicesComeWithTheirIndexes) {
  window_.Load();
  EXPECT_EQ(Shown().cboDevice.Rows,
            (std::vector<presenters::ChoiceRow>{{"Built-in Audio", 0}, {"USB Audio CODEC", 3}}));
}

TEST_F(ConfigurationTest, ADeviceThatHasGoneSelectsNothingAndIsKept) {
  rig_.Settings.InputDevice = 7;
  window_.Load();
  EXPECT_EQ(Shown().cboDevice.Row, -1);
  EXPECT_TRUE(window_.cmdSave());
  EXPECT_EQ(rig_.Settings.InputDevice, 7);
}

TEST_F(ConfigurationTest, ADeviceNamedWithTheMarksOfTheListTextIsItself) {
  rig_.Devices = {{.Name = "Line #1%", .Index = 0, .Id = "a"}, {.Name = "50%#2%Mic#", .Index = 2, .Id = "b"}};
  window_.Load();
  EXPECT_EQ(Shown().cboDevice.Rows, (std::vector<presenters::ChoiceRow>{{"Line #1%", 0}, {"50%#2%Mic#", 2}}));
  rig_.Devices.clear();
  window_.Load();
  EXPECT_THAT(Shown().cboDevice.Rows, IsEmpty());
}

TEST_F(ConfigurationTest, ChoosingInTheFourListsIsAChange) {
  const std::vector<void (presenters::Configuration::*)(int)> lists{
      &presenters::Configuration::cboDevice, &presenters::Configuration::cboMinLength,
      &presenters::Configuration::cboMaxLength, &presenters::Configuration::cboSongDelay};
  for (const auto list : lists) {
    window_.Load();
    EXPECT_FALSE(window_.Dirty());
    (window_.*list)(0);
    EXPECT_TRUE(window_.Dirty());
  }
}

TEST_F(ConfigurationTest, ClickingDuplicatesIsAChange) {
  window_.Load();
  window_.chkDuplicates(false);
  EXPECT_TRUE(window_.Dirty());
}

TEST_F(ConfigurationTest, BrowsingIsAChangeWhetherOrNotAFolderIsChosen) {
  window_.Load();
  (void)window_.cmdBrowse();
  EXPECT_TRUE(window_.Dirty());
}

TEST_F(ConfigurationTest, TypingSpinningAndTheTaskbarBoxAreNoChanges) {
  window_.Load();
  window_.txtFileDir("/elsewhere");
  window_.txtFilenameFormat("%s");
  window_.txtAGCLowLevel("-1");
  window_.txtAGCHighLevel("-2");
  window_.txtAGCAttackTime("60");
  window_.StepAGCLowLevel(1);
  window_.StepAGCHighLevel(1);
  window_.StepAGCAttackTime(1);
  window_.chkAGCEnabled(true);
  window_.chkTaskBarMinimized(false);
  EXPECT_FALSE(window_.Dirty());
  EXPECT_TRUE(window_.CloseBox());
  EXPECT_THAT(rig_.Dialogs.Shown, IsEmpty());
}

TEST_F(ConfigurationTest, AFormatTakesEffectWhenItIsChosenAndIsStoredOnlyBySaving) {
  window_.Load();
  ChooseFormat("VOX");
  EXPECT_EQ(rig_.Settings.FileFormat, "VOX");
  EXPECT_EQ(rig_.Stops(), 1);
  EXPECT_EQ(Shown().lblFormatSpecifications, "SetFormatVOX 44100");
  EXPECT_TRUE(window_.Dirty());
  EXPECT_THAT(rig_.Saves(), IsEmpty()) << "a cancel now leaves the stored key as it was";
  ChooseFormat("VOX");
  EXPECT_EQ(rig_.Stops(), 1) << "the same format stops nothing";
  EXPECT_TRUE(window_.cmdSave());
  EXPECT_EQ(rig_.Store.Stored("Lorimel", "Kestrune", "FileFormat"), "VOX");
  EXPECT_EQ(rig_.Stops(), 1);
}

TEST_F(ConfigurationTest, TheIdleSlotIsTheOneThatIsNotWritten) {
  rig_.CaptureSlot = 1;
  window_.Load();
  ChooseFormat("WAV");
  EXPECT_EQ(rig_.Idle.Calls.back(), "SetFormatWAV 44100 2 16");
}

TEST_F(ConfigurationTest, TheGainBoxShowsAndHidesSpinsAndLabels) {
  window_.Load();
  EXPECT_FALSE(Shown().AGCSpinsVisible);
  window_.chkAGCEnabled(true);
  EXPECT_TRUE(Shown().AGCSpinsVisible);
  window_.chkAGCEnabled(false);
  EXPECT_FALSE(Shown().AGCSpinsVisible);
}

TEST_F(ConfigurationTest, TheSpinsStepWithinTheirRanges) {
  window_.Load();
  window_.txtAGCLowLevel("-89");
  window_.StepAGCLowLevel(-1);
  window_.StepAGCLowLevel(-1);
  EXPECT_EQ(Shown().txtAGCLowLevel, "-90");
  window_.txtAGCHighLevel("-1");
  window_.StepAGCHighLevel(1);
  window_.StepAGCHighLevel(1);
  EXPECT_EQ(Shown().txtAGCHighLevel, "0");
  window_.StepAGCAttackTime(1);
  EXPECT_EQ(Shown().txtAGCAttackTime, "50") << "from the default 4, below the range";
  window_.txtAGCAttackTime("199 ms");
  window_.StepAGCAttackTime(1);
  window_.StepAGCAttackTime(1);
  EXPECT_EQ(Shown().txtAGCAttackTime, "200");
}

TEST_F(ConfigurationTest, DefaultsSetSevenControlsAndNoOther) {
  rig_.Settings.FileFormat = "WAV";
  rig_.Settings.SaveDuplicates = false;
  rig_.Settings.TaskBarMinimized = false;
  rig_.Settings.AGCEnabled = true;
  rig_.Settings.InputDevice = 3;
  rig_.Settings.MinSongLength = 0;
  rig_.Settings.MaxSongLength = 900;
  rig_.Settings.SongDelay = 0;
  rig_.Settings.FilenameFormat = "%s";
  rig_.Settings.FormatMP3.Bitrate = 64;
  rig_.Settings.Watch = false;
  rig_.Settings.CutPlacement = config::CutPlacement::Listen;
  rig_.Settings.ShelfFolder = "/music/shelf/";
  rig_.Settings.ShelfSongs = 0;
  rig_.Settings.ShelfMegabytes = 9;
  rig_.Settings.Hints = true;
  rig_.Settings.FollowHints = true;
  rig_.Settings.NotifySongs = true;
  rig_.Settings.NotifyEvents = false;
  const config::FormatMP3 mp3 = rig_.Settings.FormatMP3;
  window_.Load();
  window_.cmdDefault();
  EXPECT_EQ(Shown().cboMinLength.Text(), "45 Sec");
  EXPECT_EQ(Shown().cboMaxLength.Text(), "Unlimited");
  EXPECT_EQ(Shown().cboSongDelay.Text(), "600");
  EXPECT_EQ(Shown().cboFileFormat.Text(), "MP3");
  EXPECT_EQ(Shown().txtFilenameFormat, "%g\\%c - %t\\%a - %s");
  EXPECT_TRUE(Shown().chkDuplicates);
  EXPECT_TRUE(Shown().chkTaskBarMinimized);
  EXPECT_TRUE(window_.Dirty());
  EXPECT_EQ(rig_.Settings.FileFormat, "MP3") << "setting the list is choosing in it";
  EXPECT_EQ(rig_.Stops(), 1);
  EXPECT_EQ(rig_.Idle.Calls.back(), "SetFormatMP3 44100 2 64");
  // And these stay.
  EXPECT_FALSE(Shown().chkWatch);
  EXPECT_EQ(Shown().cboCutPlacement.Text(), "By listening");
  EXPECT_EQ(Shown().txtShelfFolder, "/music/shelf/");
  EXPECT_EQ(Shown().txtShelfSongs, "0");
  EXPECT_EQ(Shown().txtShelfMegabytes, "9");
  EXPECT_TRUE(Shown().chkHints);
  EXPECT_TRUE(Shown().chkFollowHints);
  EXPECT_TRUE(Shown().chkNotifySongs);
  EXPECT_FALSE(Shown().chkNotifyEvents);
  EXPECT_EQ(rig_.Settings.FormatMP3, mp3);
  EXPECT_EQ(Shown().txtFileDir, "/music/");
  EXPECT_EQ(Shown().cboDevice.Text(), "USB Audio CODEC");
  EXPECT_TRUE(Shown().chkAGCEnabled);
  EXPECT_EQ(Shown().txtAGCLowLevel, "-10");
}

TEST_F(ConfigurationTest, NoneWithUnlimitedIsSaved) {
  window_.Load();
  ChooseMin("None");
  ChooseMax("Unlimited");
  EXPECT_TRUE(window_.cmdSave());
  EXPECT_EQ(rig_.Settings.MinSongLength, 0);
  EXPECT_EQ(rig_.Settings.MaxSongLength, 0);
}

TEST_F(ConfigurationTest, AMinimumOf120SecondsWithTwoMinutesIsRefused) {
  window_.Load();
  ChooseMin("120 Sec");
  ChooseMax("2.0 Min");
  window_.txtFilenameFormat("/%a/");
  EXPECT_FALSE(window_.cmdSave());
  ASSERT_EQ(rig_.Dialogs.Shown.size(), 1U);
  EXPECT_EQ(rig_.Dialogs.Shown[0].Text, "Minimum song length must be less than maximum song length");
  EXPECT_EQ(rig_.Dialogs.Shown[0].Title, "Song length error");
  EXPECT_EQ(rig_.Dialogs.Shown[0].Icon, platform::MessageIcon::Warning);
  EXPECT_EQ(rig_.Dialogs.Shown[0].Buttons, platform::MessageButtons::Ok);
  EXPECT_THAT(rig_.Saves(), IsEmpty());
  EXPECT_EQ(rig_.Settings.MinSongLength, 45);
  EXPECT_EQ(Shown().txtFilenameFormat, "/%a/") << "the check comes before the cleaning";
  EXPECT_TRUE(window_.Dirty());
}

TEST_F(ConfigurationTest, AMinimumThatIsNotOnTheListSelectsNothingAndIsKept) {
  rig_.Settings.MinSongLength = 47;
  window_.Load();
  EXPECT_EQ(Shown().cboMinLength.Row, -1);
  EXPECT_EQ(Shown().cboMinLength.Text(), "");
  EXPECT_TRUE(window_.cmdSave());
  EXPECT_EQ(rig_.Settings.MinSongLength, 47);
}

TEST_F(ConfigurationTest, AFilenameFormatIsCleanedInTheBoxAndSaved) {
  window_.Load();
  window_.txtFilenameFormat("/ %a: %s /");
  EXPECT_TRUE(window_.cmdSave());
  EXPECT_EQ(Shown().txtFilenameFormat, "%a %s");
  EXPECT_EQ(rig_.Settings.FilenameFormat, "%a %s");
  EXPECT_EQ(rig_.Store.Stored("Lorimel", "Kestrune", "FilenameFormat"), "%a %s");
}

TEST_F(ConfigurationTest, ADelayThatIsNotOnTheListIsSavedAsZero) {
  rig_.Settings.SongDelay = 650;
  window_.Load();
  EXPECT_EQ(Shown().cboSongDelay.Row, -1);
  EXPECT_TRUE(window_.cmdSave());
  EXPECT_EQ(rig_.Settings.SongDelay, 0);
}

TEST_F(ConfigurationTest, AFolderGetsItsSeparator) {
  window_.Load();
  window_.txtFileDir("/data/Music");
  EXPECT_TRUE(window_.cmdSave());
  EXPECT_EQ(rig_.Settings.FileDir, "/data/Music/");
  EXPECT_EQ(rig_.Store.Stored("Lorimel", "Kestrune", "FileDir"), "/data/Music/");
}

TEST_F(ConfigurationTest, AFormatThatIsNotOnTheListSelectsNothingAndIsKept) {
  rig_.Settings.FileFormat = "mp3";
  window_.Load();
  EXPECT_EQ(Shown().cboFileFormat.Row, -1);
  EXPECT_TRUE(window_.cmdSave());
  EXPECT_EQ(rig_.Settings.FileFormat, "mp3");
  EXPECT_EQ(rig_.Stops(), 0);
}

TEST_F(ConfigurationTest, ASaveWritesEverySettingInItsOrder) {
  window_.Load();
  ChooseMin("20 Sec");
  ChooseMax("1.5 Min");
  window_.cboSongDelay(50);
  window_.txtFileDir("/data");
  window_.txtFilenameFormat("%a - %s");
  ChooseFormat("OGG");
  window_.chkAGCEnabled(true);
  window_.txtAGCLowLevel(" -77 ");
  window_.txtAGCHighLevel("3");
  window_.txtAGCAttackTime("1.5");
  window_.cboDevice(1);
  window_.chkDuplicates(false);
  window_.chkTaskBarMinimized(false);
  window_.chkWatch(false);
  window_.cboCutPlacement(1);
  window_.txtShelfFolder("/data/shelf");
  window_.txtShelfSongs("0");
  window_.txtShelfMegabytes("70000");
  window_.chkHints(true);
  window_.chkFollowHints(true);
  window_.chkNotifySongs(true);
  window_.chkNotifyEvents(false);
  window_.chkNotifyProblems(false);
  window_.chkNotifyHints(false);
  EXPECT_TRUE(window_.cmdSave());
  EXPECT_THAT(
      rig_.Saves(),
      ElementsAre("MinSongLength=20", "MaxSongLength=90", "SongDelay=5000", "FileDir=/data/",
                  "FilenameFormat=%a - %s", "FileFormat=OGG", "AGCEnabled=True", "AGCLowLevel=-77",
                  "AGCHighLevel=3", "AGCAttackTime=2", "InputDevice=3", "SaveDuplicates=False",
                  "TaskBarMinimized=False", "Watch=False", "CutPlacement=Listen", "ShelfFolder=/data/shelf/",
                  "ShelfSongs=0", "ShelfMegabytes=70000", "Hints=True", "FollowHints=True",
                  "NotifySongs=True", "NotifyEvents=False", "NotifyProblems=False", "NotifyHints=False"));
  const config::Settings& saved = rig_.Settings;
  EXPECT_EQ(saved.MinSongLength, 20);
  EXPECT_EQ(saved.MaxSongLength, 90);
  EXPECT_EQ(saved.SongDelay, 5000);
  EXPECT_EQ(saved.FileDir, "/data/");
  EXPECT_EQ(saved.FilenameFormat, "%a - %s");
  EXPECT_EQ(saved.FileFormat, "OGG");
  EXPECT_TRUE(saved.AGCEnabled);
  EXPECT_EQ(saved.AGCLowLevel, -77);
  EXPECT_EQ(saved.AGCHighLevel, 3) << "the ranges hold the spins alone";
  EXPECT_EQ(saved.AGCAttackTime, 2);
  EXPECT_EQ(saved.InputDevice, 3);
  EXPECT_FALSE(saved.SaveDuplicates);
  EXPECT_FALSE(saved.TaskBarMinimized);
  EXPECT_FALSE(saved.Watch);
  EXPECT_EQ(saved.CutPlacement, config::CutPlacement::Listen);
  EXPECT_EQ(saved.ShelfFolder, "/data/shelf/");
  EXPECT_EQ(saved.ShelfSongs, 0);
  EXPECT_EQ(saved.ShelfMegabytes, 70000);
  EXPECT_TRUE(saved.Hints);
  EXPECT_TRUE(saved.FollowHints);
  EXPECT_TRUE(saved.NotifySongs);
  EXPECT_FALSE(saved.NotifyEvents);
  EXPECT_FALSE(saved.NotifyProblems);
  EXPECT_FALSE(saved.NotifyHints);
  EXPECT_FALSE(window_.Dirty());
  EXPECT_EQ(std::ranges::count(rig_.Effects, "device"), 1);
}

TEST_F(ConfigurationTest, ASaveThatKeepsTheDeviceAsksForNoOther) {
  window_.Load();
  EXPECT_TRUE(window_.cmdSave());
  EXPECT_EQ(std::ranges::count(rig_.Effects, "device"), 0);
}

TEST_F(ConfigurationTest, AStoreThatCannotBeWrittenKeepsTheWindowOpenAndIsLogged) {
  window_.Load();
  rig_.Store.FailWrites = true;
  ChooseMin("20 Sec");
  EXPECT_FALSE(window_.cmdSave());
  EXPECT_EQ(window_.FieldToMend(), "");
  EXPECT_EQ(rig_.Settings.MinSongLength, 20) << "the running program has the new value";
  EXPECT_THAT(rig_.Journal.Log, ElementsAre("The settings could not be saved"));
  ASSERT_EQ(rig_.Dialogs.Shown.size(), 1U);
  EXPECT_EQ(rig_.Dialogs.Shown[0].Text, "The settings could not be saved.");
  rig_.Dialogs.Answer = platform::MessageAnswer::Yes;
  EXPECT_FALSE(window_.CloseBox());

  rig_.Store.FailWrites = false;
  EXPECT_TRUE(window_.cmdSave());
  EXPECT_EQ(rig_.Stored("MinSongLength"), "20");
}

TEST_F(ConfigurationTest, ASaveChangesAndStoresOnlyWhatTheUserTouched) {
  window_.Load();
  ChooseMin("20 Sec");
  rig_.Settings.MaxSongLength = 600;
  rig_.Settings.FileDir = "/elsewhere/";
  rig_.Settings.SaveDuplicates = false;
  EXPECT_TRUE(window_.cmdSave());
  EXPECT_THAT(rig_.Saves(), ElementsAre("MinSongLength=20", "FileFormat=MP3"));
  EXPECT_EQ(rig_.Settings.MaxSongLength, 600);
  EXPECT_EQ(rig_.Settings.FileDir, "/elsewhere/");
  EXPECT_FALSE(rig_.Settings.SaveDuplicates);
}

TEST_F(ConfigurationTest, ADelayThatBecameUnlistedWhileTheWindowWasOpenIsKept) {
  window_.Load();
  rig_.Settings.SongDelay = 650;
  window_.Follow();
  EXPECT_EQ(Shown().cboSongDelay.Row, -1);
  EXPECT_TRUE(window_.cmdSave());
  EXPECT_EQ(rig_.Settings.SongDelay, 650);

  window_.Load();
  rig_.Settings.SongDelay = 670;
  window_.Follow();
  EXPECT_TRUE(window_.cmdSave());
  EXPECT_EQ(rig_.Settings.SongDelay, 670) << "off its list at Load, but changed since";
}

TEST_F(ConfigurationTest, UntouchedControlsFollowWhatIsChangedElsewhere) {
  window_.Load();
  window_.txtFileDir("/mine");
  ChooseMin("20 Sec");
  rig_.Settings.MinSongLength = 60;
  rig_.Settings.MaxSongLength = 900;
  rig_.Settings.FileDir = "/theirs/";
  rig_.Settings.FilenameFormat = "%a";
  rig_.Settings.AGCEnabled = true;
  rig_.Settings.AGCLowLevel = -60;
  EXPECT_TRUE(rig_.Door.Set("FileFormat", "WAV").Done());
  window_.Follow();
  EXPECT_EQ(Shown().cboMinLength.Text(), "20 Sec");
  EXPECT_EQ(Shown().txtFileDir, "/mine");
  EXPECT_EQ(Shown().cboMaxLength.Text(), "15.0 Min");
  EXPECT_EQ(Shown().txtFilenameFormat, "%a");
  EXPECT_TRUE(Shown().AGCSpinsVisible);
  EXPECT_EQ(Shown().txtAGCLowLevel, "-60");
  EXPECT_EQ(Shown().cboFileFormat.Text(), "WAV");
  EXPECT_EQ(Shown().lblFormatSpecifications, "SetFormatWAV 44100 2 16");
  EXPECT_TRUE(window_.cmdSave());
  EXPECT_EQ(rig_.Settings.MinSongLength, 20);
  EXPECT_EQ(rig_.Settings.FileDir, "/mine/");
  EXPECT_EQ(rig_.Settings.FilenameFormat, "%a");
}

TEST_F(ConfigurationTest, WhatTheShelfCannotBeIsRefusedAtItsTextBox) {
  struct Row {
    void (presenters::Configuration::*Type)(std::string_view text);
    const char* Text;
    const char* Field;
    const char* Told;  ///< null: a text that is no number is not talked about
  };
  using presenters::Configuration;
  const std::vector<Row> rows{
      {&Configuration::txtShelfSongs, "1001", "txtShelfSongs", "\"1001\" is not from 0 to 1000"},
      {&Configuration::txtShelfSongs, "-1", "txtShelfSongs", "\"-1\" is not from 0 to 1000"},
      {&Configuration::txtShelfSongs, "many", "txtShelfSongs", nullptr},
      {&Configuration::txtShelfMegabytes, "0", "txtShelfMegabytes", "\"0\" is not from 1 to 1000000"},
      {&Configuration::txtShelfMegabytes, "", "txtShelfMegabytes", nullptr},
      {&Configuration::txtShelfFolder, "shelf", "txtShelfFolder",
       "\"shelf\" is not a folder that begins with / or ~/"},
      {&Configuration::txtShelfFolder, "/music", "txtShelfFolder",
       "\"/music\" is the folder of recordings; the shelf needs one of its own"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.Text);
    ConfigurationRig rig;
    rig.Settings.FileDir = "/music/";
    const config::Settings before = rig.Settings;
    rig.Window.Load();
    (rig.Window.*row.Type)(row.Text);
    EXPECT_FALSE(rig.Window.cmdSave());
    EXPECT_EQ(rig.Window.FieldToMend(), row.Field);
    ASSERT_EQ(rig.Dialogs.Shown.size(), row.Told == nullptr ? 0U : 1U);
    if (row.Told != nullptr) {
      EXPECT_THAT(rig.Dialogs.Shown[0].Text, ::testing::EndsWith(row.Told));
    }
    EXPECT_EQ(rig.Settings, before);
  }
}

TEST_F(ConfigurationTest, TheShelfsSpinsStayWithinItsBounds) {
  window_.Load();
  window_.txtShelfSongs("1");
  window_.StepShelfSongs(-1);
  window_.StepShelfSongs(-1);
  EXPECT_EQ(Shown().txtShelfSongs, "0");
  window_.txtShelfSongs("1000");
  window_.StepShelfSongs(1);
  EXPECT_EQ(Shown().txtShelfSongs, "1000");
  window_.txtShelfMegabytes("40");
  window_.StepShelfMegabytes(-1);
  EXPECT_EQ(Shown().txtShelfMegabytes, "1");
  window_.txtShelfMegabytes("999990");
  window_.StepShelfMegabytes(1);
  EXPECT_EQ(Shown().txtShelfMegabytes, "1000000");
}

TEST_F(ConfigurationTest, TheChooserOfTheShelfsFolderStartsWhereSongsGoUnlessItHasItsOwn) {
  window_.Load();
  window_.txtFileDir("/mine/");
  EXPECT_EQ(window_.cmdBrowseShelf(), "/mine");
  EXPECT_TRUE(window_.Dirty());
  window_.ShelfFolderChosen("");
  EXPECT_EQ(Shown().txtShelfFolder, "") << "nothing was chosen";
  window_.ShelfFolderChosen("/mine/shelf");
  EXPECT_EQ(window_.cmdBrowseShelf(), "/mine/shelf");
  EXPECT_EQ(Shown().txtFileDir, "/mine/");
}

TEST_F(ConfigurationTest, EveryControlAloneSavesItsOwnSetting) {
  using presenters::Configuration;
  const std::vector<std::pair<std::string, std::function<void(Configuration&)>>> touches{
      {"MinSongLength=0", [](Configuration& window) { window.cboMinLength(0); }},
      {"MaxSongLength=60", [](Configuration& window) { window.cboMaxLength(2); }},
      {"SongDelay=0", [](Configuration& window) { window.cboSongDelay(0); }},
      {"FileDir=/data/", [](Configuration& window) { window.txtFileDir("/data"); }},
      {"FileDir=/data/", [](Configuration& window) { window.FolderChosen("/data"); }},
      {"FilenameFormat=%s", [](Configuration& window) { window.txtFilenameFormat("%s"); }},
      {"FilenameFormat=%a - %s", [](Configuration& window) { window.FilenameFormats().cmdSelect(0); }},
      {"AGCEnabled=True", [](Configuration& window) { window.chkAGCEnabled(true); }},
      {"AGCLowLevel=-1", [](Configuration& window) { window.txtAGCLowLevel("-1"); }},
      {"AGCLowLevel=-9", [](Configuration& window) { window.StepAGCLowLevel(1); }},
      {"AGCHighLevel=-2", [](Configuration& window) { window.txtAGCHighLevel("-2"); }},
      {"AGCHighLevel=-41", [](Configuration& window) { window.StepAGCHighLevel(-1); }},
      {"AGCAttackTime=60", [](Configuration& window) { window.txtAGCAttackTime("60"); }},
      {"AGCAttackTime=50", [](Configuration& window) { window.StepAGCAttackTime(1); }},
      {"InputDevice=3", [](Configuration& window) { window.cboDevice(1); }},
      {"SaveDuplicates=False", [](Configuration& window) { window.chkDuplicates(false); }},
      {"TaskBarMinimized=False", [](Configuration& window) { window.chkTaskBarMinimized(false); }},
      {"Watch=False", [](Configuration& window) { window.chkWatch(false); }},
      {"CutPlacement=Listen", [](Configuration& window) { window.cboCutPlacement(1); }},
      {"ShelfFolder=/data/", [](Configuration& window) { window.txtShelfFolder("/data"); }},
      {"ShelfFolder=/data/", [](Configuration& window) { window.ShelfFolderChosen("/data"); }},
      {"ShelfSongs=5", [](Configuration& window) { window.txtShelfSongs("5"); }},
      {"ShelfSongs=19", [](Configuration& window) { window.StepShelfSongs(-1); }},
      {"ShelfMegabytes=1000000", [](Configuration& window) { window.txtShelfMegabytes("1000000"); }},
      {"ShelfMegabytes=550", [](Configuration& window) { window.StepShelfMegabytes(1); }},
      {"Hints=True", [](Configuration& window) { window.chkHints(true); }},
      {"FollowHints=True", [](Configuration& window) { window.chkFollowHints(true); }},
      {"NotifySongs=True", [](Configuration& window) { window.chkNotifySongs(true); }},
      {"NotifyEvents=False", [](Configuration& window) { window.chkNotifyEvents(false); }},
      {"NotifyProblems=False", [](Configuration& window) { window.chkNotifyProblems(false); }},
      {"NotifyHints=False", [](Configuration& window) { window.chkNotifyHints(false); }},
  };
  for (const auto& [saved, touch] : touches) {
    ConfigurationRig rig;
    rig.Settings.FileDir = "/music/";
    rig.Window.Load();
    touch(rig.Window);
    EXPECT_TRUE(rig.Window.cmdSave());
    EXPECT_THAT(rig.Saves(), UnorderedElementsAre(saved, "FileFormat=MP3"));
  }
}

TEST_F(ConfigurationTest, AfterDefaultSettingsEveryFieldIsSaved) {
  window_.Load();
  window_.cmdDefault();
  rig_.Settings.TaskBarMinimized = false;
  rig_.Settings.FileDir = "/elsewhere/";
  window_.Follow();
  EXPECT_TRUE(window_.cmdSave());
  EXPECT_EQ(rig_.Saves().size(), 24U);
  EXPECT_TRUE(rig_.Settings.TaskBarMinimized);
  EXPECT_EQ(rig_.Settings.FileDir, "/music/") << "as it was shown";
}

TEST_F(ConfigurationTest, TheFirstConfigurationStoresEverySettingOfTheWindow) {
  window_.LoadFirst();
  rig_.Settings.MinSongLength = 60;
  EXPECT_TRUE(window_.cmdSave());
  EXPECT_EQ(rig_.Saves().size(), 24U);
  EXPECT_EQ(rig_.Stored("MinSongLength"), "60") << "what nobody touched is stored as it is";
}

TEST_F(ConfigurationTest, AFormatWhoseChoiceWasCancelledIsStoredByTheNextSave) {
  window_.Load();
  ChooseFormat("VOX");
  window_.Load();
  EXPECT_EQ(rig_.Stored("FileFormat"), "(absent)");
  EXPECT_TRUE(window_.cmdSave());
  EXPECT_EQ(rig_.Stored("FileFormat"), "VOX");
}

TEST_F(ConfigurationTest, AnEmptyOrRelativeFolderIsRefusedWithAMessage) {
  for (const char* folder : {"", " ", "Music", "./songs"}) {
    rig_.Dialogs.Shown.clear();
    window_.Load();
    ChooseMin("20 Sec");
    window_.txtFileDir(folder);
    EXPECT_FALSE(window_.cmdSave()) << folder;
    EXPECT_EQ(window_.FieldToMend(), "txtFileDir");
    ASSERT_EQ(rig_.Dialogs.Shown.size(), 1U);
    EXPECT_THAT(rig_.Dialogs.Shown[0].Text, HasSubstr(std::string("\"") + folder + "\" is "));
    EXPECT_EQ(rig_.Settings.FileDir, "/music/");
    EXPECT_EQ(rig_.Settings.MinSongLength, 45);
    EXPECT_THAT(rig_.Saves(), IsEmpty());
  }
  rig_.Dialogs.Answer = platform::MessageAnswer::Yes;
  EXPECT_FALSE(window_.CloseBox()) << "the text is to be mended first";
}

TEST_F(ConfigurationTest, ATildeStandsForTheHomeFolder) {
  window_.Load();
  window_.txtFileDir("~/Music");
  EXPECT_TRUE(window_.cmdSave());
  EXPECT_EQ(rig_.Stored("FileDir"), "/home/user/Music/");
}

TEST_F(ConfigurationTest, AFolderThatCannotBeWrittenToIsSavedWithAMessage) {
  rig_.Files.MakeFolders("/mnt/archive");
  rig_.Files.MakeUnwritable("/mnt/archive");
  window_.Load();
  window_.txtFileDir("/mnt/archive");
  EXPECT_TRUE(window_.cmdSave());
  ASSERT_EQ(rig_.Dialogs.Shown.size(), 1U);
  EXPECT_EQ(rig_.Dialogs.Shown[0].Text, "Nothing can be recorded to /mnt/archive/: Permission denied");
  EXPECT_EQ(rig_.Stored("FileDir"), "/mnt/archive/");
}

TEST_F(ConfigurationTest, AGainTextThatIsNoNumberKeepsTheWindowOpenAndSavesNothing) {
  struct Row {
    void (presenters::Configuration::*Type)(std::string_view);
    std::string_view Field;
  };
  for (const Row& row : {Row{&presenters::Configuration::txtAGCLowLevel, "txtAGCLowLevel"},
                         Row{&presenters::Configuration::txtAGCHighLevel, "txtAGCHighLevel"},
                         Row{&presenters::Configuration::txtAGCAttackTime, "txtAGCAttackTime"}}) {
    for (const char* text : {"", "loud", "40000", "-32769", "1 2 x"}) {
      window_.Load();
      const config::Settings before = rig_.Settings;
      ChooseMin("20 Sec");
      (window_.*row.Type)(text);
      EXPECT_FALSE(window_.cmdSave()) << row.Field << " " << text;
      EXPECT_EQ(window_.FieldToMend(), row.Field);
      EXPECT_EQ(rig_.Settings, before);
      EXPECT_THAT(rig_.Saves(), IsEmpty());
      EXPECT_THAT(rig_.Dialogs.Shown, IsEmpty());
    }
  }
}

TEST_F(ConfigurationTest, TheCloseBoxAsksOnlyAfterAChange) {
  window_.Load();
  EXPECT_TRUE(window_.CloseBox());
  EXPECT_THAT(rig_.Dialogs.Shown, IsEmpty());
  window_.chkDuplicates(false);
  rig_.Dialogs.Answer = platform::MessageAnswer::No;
  EXPECT_TRUE(window_.CloseBox());
  ASSERT_EQ(rig_.Dialogs.Shown.size(), 1U);
  EXPECT_EQ(rig_.Dialogs.Shown[0].Text, "You have made changes, do you want to save your changes first?");
  EXPECT_EQ(rig_.Dialogs.Shown[0].Title, "Save Configuration Changes");
  EXPECT_EQ(rig_.Dialogs.Shown[0].Icon, platform::MessageIcon::Information);
  EXPECT_EQ(rig_.Dialogs.Shown[0].Buttons, platform::MessageButtons::YesNoCancel);
  EXPECT_THAT(rig_.Saves(), IsEmpty());
}

TEST_F(ConfigurationTest, TheCloseBoxsCancelKeepsTheWindowOpen) {
  window_.Load();
  window_.chkDuplicates(false);
  rig_.Dialogs.Answer = platform::MessageAnswer::Cancel;
  EXPECT_FALSE(window_.CloseBox());
  EXPECT_THAT(rig_.Saves(), IsEmpty());
}

TEST_F(ConfigurationTest, TheCloseBoxsYesSaves) {
  window_.Load();
  window_.chkDuplicates(false);
  rig_.Dialogs.Answer = platform::MessageAnswer::Yes;
  EXPECT_TRUE(window_.CloseBox());
  EXPECT_FALSE(rig_.Settings.SaveDuplicates);
}

TEST_F(ConfigurationTest, TheCloseBoxsYesClosesThoughTheLengthsAreRefused) {
  window_.Load();
  ChooseMin("120 Sec");
  ChooseMax("2.0 Min");
  rig_.Dialogs.Answer = platform::MessageAnswer::Yes;
  EXPECT_TRUE(window_.CloseBox());
  EXPECT_EQ(rig_.Dialogs.Shown.size(), 2U);
  EXPECT_THAT(rig_.Saves(), IsEmpty());
}

TEST_F(ConfigurationTest, TheCloseBoxsYesWithAGainTextThatIsNoNumberKeepsTheWindowOpen) {
  window_.Load();
  window_.chkDuplicates(false);
  window_.txtAGCLowLevel("loud");
  rig_.Dialogs.Answer = platform::MessageAnswer::Yes;
  EXPECT_FALSE(window_.CloseBox());
  EXPECT_EQ(window_.FieldToMend(), "txtAGCLowLevel");
}

TEST_F(ConfigurationTest, TheFolderChooserStartsWhereTheTextPoints) {
  window_.Load();
  const std::vector<std::pair<std::string, std::string>> rows{
      {"", "/home/user/Music/Kestrune"},
      {"/", "/"},
      {"/music/", "/music"},
      {"/music", "/music"},
      {"/music//", "/music"},
      {"relative/", "relative"},
  };
  for (const auto& [text, start] : rows) {
    window_.txtFileDir(text);
    EXPECT_EQ(window_.cmdBrowse(), start) << text;
    EXPECT_EQ(Shown().txtFileDir, text);
  }
}

TEST_F(ConfigurationTest, AChosenFolderReplacesTheTextAndNoneKeepsIt) {
  window_.Load();
  window_.FolderChosen("");
  EXPECT_EQ(Shown().txtFileDir, "/music/");
  window_.FolderChosen(std::string_view("/data\0rest", 10));
  EXPECT_EQ(Shown().txtFileDir, "/data");
  window_.FolderChosen(std::string_view("\0rest", 5));
  EXPECT_EQ(Shown().txtFileDir, "/data");
}

TEST_F(ConfigurationTest, AfterAnOptionWindowTheIdleSlotIsPreparedWithWhatItSaved) {
  rig_.Settings.FileFormat = "WAV";
  window_.Load();
  window_.Buttons("WAV")->Load();
  window_.Buttons("WAV")->Choose(1, 1);
  EXPECT_TRUE(window_.Buttons("WAV")->cmdOK());
  window_.FormatOptionsClosed();
  EXPECT_EQ(Shown().lblFormatSpecifications, "SetFormatWAV 44100 2 8");
  EXPECT_EQ(rig_.Stops(), 0);
  EXPECT_FALSE(window_.Dirty());
}

TEST_F(ConfigurationTest, AnOptionWindowDoesNotPutBackAFormatThatWasChangedElsewhere) {
  rig_.Settings.FileFormat = "WAV";
  window_.Load();
  rig_.Settings.FileFormat = "VOX";
  window_.FormatOptionsClosed();
  EXPECT_EQ(rig_.Settings.FileFormat, "VOX");
  EXPECT_EQ(rig_.Stops(), 0);
  EXPECT_EQ(Shown().lblFormatSpecifications, "SetFormatVOX 44100");
}

TEST_F(ConfigurationTest, AReadyMadeFilenameFormatIsNoChangeAndSavesNothing) {
  window_.Load();
  window_.FilenameFormats().cmdSelect(2);
  EXPECT_EQ(Shown().txtFilenameFormat, "%a\\%a - %s");
  EXPECT_FALSE(window_.Dirty());
  EXPECT_THAT(rig_.Saves(), IsEmpty());
}

TEST_F(ConfigurationTest, TheRoomBesideTheFolderIsThatOfWhatIsTyped) {
  rig_.Files.Free = 123.46e9;
  window_.Load();
  EXPECT_EQ(Shown().lblFileRoom.Text, "123.4 GB free");
  EXPECT_FALSE(Shown().lblFileRoom.Scarce);
  EXPECT_EQ(Shown().lblShelfRoom.Text, "") << "it has no folder of its own";
  rig_.Files.Free = 500e6;
  window_.txtFileDir("/small/music");
  EXPECT_EQ(Shown().lblFileRoom.Text, "500 MB free, which is little");
  EXPECT_TRUE(Shown().lblFileRoom.Scarce);
  window_.txtShelfFolder("/small/shelf");
  EXPECT_TRUE(Shown().lblShelfRoom.Scarce);
}

TEST_F(ConfigurationTest, TheRoomIsLookedAtEveryTwoSecondsAndNotAtEachBeat) {
  window_.Load();
  rig_.Files.Free = 7e9;
  for (int beat = 1; beat < 20; ++beat) window_.Follow();
  EXPECT_EQ(Shown().lblFileRoom.Text, "100.0 GB free");
  window_.Follow();
  EXPECT_EQ(Shown().lblFileRoom.Text, "7.0 GB free");
}

TEST_F(ConfigurationTest, OnlyTheFirstRunWelcomes) {
  window_.LoadFirst();
  EXPECT_THAT(Shown().lblWelcome, HasSubstr("Welcome"));
  window_.Load();
  EXPECT_EQ(Shown().lblWelcome, "");
}

TEST_F(ConfigurationTest, TheStartWithTheDesktopIsReadAndChangedWithASave) {
  rig_.Autostart.State.Starts = true;
  window_.Load();
  EXPECT_TRUE(Shown().chkAutostart);
  window_.chkAutostart(false);
  EXPECT_TRUE(window_.Dirty());
  EXPECT_EQ(rig_.Autostart.Changes, 0) << "not before the save";
  EXPECT_TRUE(window_.cmdSave());
  EXPECT_FALSE(rig_.Autostart.State.Starts);
  window_.Load();
  EXPECT_FALSE(Shown().chkAutostart);
  window_.chkAutostart(true);
  EXPECT_TRUE(window_.cmdSave());
  EXPECT_TRUE(rig_.Autostart.State.Starts);
  EXPECT_THAT(rig_.Dialogs.Shown, IsEmpty());
  for (const std::string& save : rig_.Saves()) EXPECT_THAT(save, ::testing::Not(HasSubstr("utostart")));
}

TEST_F(ConfigurationTest, AnUntouchedStartWithTheDesktopIsLeftAlone) {
  window_.Load();
  rig_.Autostart.State.Starts = true;  // by another program meanwhile
  window_.chkDuplicates(false);
  EXPECT_TRUE(window_.cmdSave());
  EXPECT_EQ(rig_.Autostart.Changes, 0);
  window_.LoadFirst();
  EXPECT_TRUE(window_.cmdSave());
  EXPECT_EQ(rig_.Autostart.Changes, 0) << "not even by the first save, which stores all";
}

TEST_F(ConfigurationTest, AnEntryOfSomebodyElseIsReplacedOnlyIfTheUserAgrees) {
  for (const bool starts : {false, true}) {
    rig_.Autostart.State = {.Starts = starts, .Foreign = true};
    rig_.Autostart.Changes = 0;
    window_.Load();
    window_.chkAutostart(!starts);
    rig_.Dialogs.Answer = platform::MessageAnswer::No;
    EXPECT_FALSE(window_.cmdSave());
    EXPECT_EQ(rig_.Autostart.Changes, 0);
    EXPECT_EQ(Shown().chkAutostart, starts) << "it shows again what is";
    EXPECT_THAT(rig_.Dialogs.Shown.back().Text,
                HasSubstr(std::string("autostart/kestrune.desktop\". ") + (starts ? "Remove" : "Replace")));
    window_.chkAutostart(!starts);
    rig_.Dialogs.Answer = platform::MessageAnswer::Yes;
    EXPECT_TRUE(window_.cmdSave());
    EXPECT_EQ(rig_.Autostart.State.Starts, !starts);
  }
}

TEST_F(ConfigurationTest, AStartWithTheDesktopThatCannotBeChangedIsSaidAndKeepsTheWindowOpen) {
  window_.Load();
  window_.chkAutostart(true);
  rig_.Autostart.FailWith = "the disk is full";
  EXPECT_FALSE(window_.cmdSave());
  EXPECT_TRUE(window_.Dirty());
  EXPECT_EQ(rig_.Dialogs.Shown.back().Text,
            "The start with the desktop could not be changed: the disk is full.");
  rig_.Autostart.FailWith.clear();
  EXPECT_TRUE(window_.cmdSave());
  EXPECT_TRUE(rig_.Autostart.State.Starts);
}

}  // namespace
}  // namespace kestrune::test
