#include <optional>
#include <string>
#include <string_view>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "config/settings/SettingKeys.h"
#include "presenters/Configuration.h"
#include "support/FakeAutostart.h"
#include "support/UnitRig.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;
using ::testing::Contains;
using ::testing::Each;
using ::testing::HasSubstr;
using ::testing::Not;

constexpr const char* kSong = "Rock/44 - Harbour/Lanterns - North Pier.wav";

/// A save of the configuration while a song is being recorded: when each setting takes effect.
class ConfigureWhileRecording : public ::testing::Test {
 protected:
  /// A whole song is being recorded, and the configuration is open.
  void Begin() {
    rig.StartIdle();
    rig->cmdRecord();
    rig.NextSong("Lanterns", "North Pier");
    ASSERT_EQ(Status(), "Recording");
    window.emplace(rig.Rules->ConfigurationAccess(autostart));
    window->Load();
  }
  [[nodiscard]] std::string Status() { return rig.Window().lblRecording.Caption; }
  [[nodiscard]] const recorder::RecordingState& State() { return rig->State().Recording; }
  static int RowOf(const presenters::ChoiceList& list, std::string_view text) {
    for (std::size_t row = 0; row < list.Rows.size(); ++row) {
      if (list.Rows[row].Text == text) return static_cast<int>(row);
    }
    return -1;
  }
  void Save() {
    EXPECT_TRUE(window->cmdSave());
    EXPECT_EQ(Status(), "Recording") << "a save stops nothing by itself";
  }

  UnitRig rig;
  FakeAutostart autostart;
  std::optional<presenters::Configuration> window;
};

TEST_F(ConfigureWhileRecording, AMinimumLengthHoldsForTheSongInHand) {
  Begin();
  window->cboMinLength(RowOf(window->Controls().cboMinLength, "120 Sec"));
  Save();
  const std::int16_t before = State().TooShortCount;
  rig.Run(60s);
  rig.NextSong("Cellar", "Blue Door");
  EXPECT_EQ(State().TooShortCount, before + 1);
  EXPECT_THAT(rig.Recordings(), Not(Contains(kSong)));
}

TEST_F(ConfigureWhileRecording, AMaximumLengthHoldsForTheSongInHand) {
  Begin();
  window->cboMaxLength(RowOf(window->Controls().cboMaxLength, ".5 Min"));
  Save();
  rig.Run(60s);
  rig.NextSong("Cellar", "Blue Door");
  EXPECT_EQ(State().TooLongCount, 1);
  EXPECT_THAT(rig.Recordings(), Not(Contains(kSong)));
}

// A song's name is worked out when its capture begins, and its file stands in that folder already.
TEST_F(ConfigureWhileRecording, FolderAndFilenameFormatHoldForTheNextName) {
  Begin();
  rig.Files.MakeFolders("/elsewhere");
  window->txtFileDir("/elsewhere");
  window->txtFilenameFormat("%s by %a");
  Save();
  rig.Run(60s);
  rig.NextSong("Cellar", "Blue Door");
  EXPECT_THAT(rig.Recordings(), Contains(kSong));
  rig.Run(60s);
  rig.NextSong("Moonlighters", "Slow Tide");
  EXPECT_THAT(rig.Files.AllFiles(), Contains("/elsewhere/Blue Door by Cellar.wav"));
}

TEST_F(ConfigureWhileRecording, DuplicatesAreNoLongerKeptFromTheSongInHandOn) {
  Begin();
  rig.Run(60s);
  rig.NextSong("Cellar", "Blue Door");
  rig.NextSong("Lanterns", "North Pier");
  ASSERT_THAT(rig.Recordings(), Contains(kSong));
  window->chkDuplicates(false);
  Save();
  rig.Run(60s);
  rig.NextSong("Cellar", "Blue Door");
  EXPECT_TRUE(rig.Logged("duplicate song in output directory"));
  EXPECT_THAT(rig.Recordings(), Not(Contains("Rock/44 - Harbour/Lanterns - North Pier1.wav")));
}

TEST_F(ConfigureWhileRecording, ASongDelayHoldsAtTheNextChange) {
  Begin();
  window->cboSongDelay(RowOf(window->Controls().cboSongDelay, "5000"));
  Save();
  const std::int16_t slot = State().CaptureSlot;
  auto& file = *rig.Audio.CaptureFiles.at(static_cast<std::size_t>(slot));
  const std::size_t before = file.Written.back().Samples.size();
  rig.Radio.Play(44, "Cellar", "Blue Door");
  ASSERT_TRUE(rig.Loop.RunUntil([&] { return State().CaptureSlot != slot; }, 20s));
  EXPECT_GE(file.Written.back().Samples.size() - before, 5000U) << "a thousand samples a second";
}

TEST_F(ConfigureWhileRecording, AnotherFormatStopsAtOnceAndPreparesTheIdleSlot) {
  Begin();
  rig.Run(60s);
  const std::size_t idle = static_cast<std::size_t>(1 - State().CaptureSlot);
  window->cboFileFormat(RowOf(window->Controls().cboFileFormat, "VOX"));
  EXPECT_EQ(Status(), "");
  EXPECT_EQ(rig.Audio.CaptureFiles.at(idle)->Calls.back(), "SetFormatVOX 44100");
  EXPECT_EQ(window->Controls().lblFormatSpecifications, "SetFormatVOX 44100");
  EXPECT_EQ(rig.Setting("FileFormat"), "WAV") << "until it is saved";
  EXPECT_EQ(rig->State().Settings.FileFormat, "VOX") << "whatever becomes of the window";
}

TEST_F(ConfigureWhileRecording, TheSameFormatStopsNothing) {
  Begin();
  window->cboFileFormat(RowOf(window->Controls().cboFileFormat, "WAV"));
  EXPECT_EQ(Status(), "Recording");
  window->FormatOptionsClosed();
  EXPECT_EQ(Status(), "Recording");
}

TEST_F(ConfigureWhileRecording, OptionsOfTheFormatHoldForTheNextCapture) {
  Begin();
  window->Buttons("WAV")->Load();
  window->Buttons("WAV")->Choose(1, 1);
  EXPECT_TRUE(window->Buttons("WAV")->cmdOK());
  window->FormatOptionsClosed();
  EXPECT_EQ(Status(), "Recording");
  const std::size_t idle = static_cast<std::size_t>(1 - State().CaptureSlot);
  EXPECT_EQ(rig.Audio.CaptureFiles.at(idle)->Calls.back(), "SetFormatWAV 1000 1 8");
  EXPECT_THAT(rig.Audio.CaptureFiles.at(1 - idle)->Calls, Not(Contains("SetFormatWAV 1000 1 8")));
  EXPECT_EQ(rig->Parts().FileSpecs.FileFormatString(), "SetFormatWAV 1000 1 8");
}

TEST_F(ConfigureWhileRecording, DefaultsStopARecordingInAnotherFormatThanMp3) {
  Begin();
  window->cmdDefault();
  EXPECT_EQ(Status(), "");
  EXPECT_EQ(rig->State().Settings.FileFormat, "MP3");
}

TEST_F(ConfigureWhileRecording, AnotherInputDeviceHoldsAtTheNextCapture) {
  rig.Sound.SetDevices({{"Radio", "radio"}, {"Other Card", "other"}});
  Begin();
  EXPECT_EQ(rig.Sound.OpenId(), "radio");
  const int row = RowOf(window->Controls().cboDevice, "Other Card");
  ASSERT_GE(row, 0);
  window->cboDevice(row);
  Save();
  EXPECT_EQ(rig->Snapshot().InputDeviceName, "Other Card");
  rig.Run(30s);
  EXPECT_EQ(rig.Sound.OpenId(), "radio") << "the song in hand goes on";
  rig.NextSong("Cellar", "Blue Door");
  EXPECT_EQ(rig.Sound.OpenId(), "other");
}

/// Nothing is recorded, and parts of songs may be kept: a stop now would save the capture in hand.
class ConfigureWhileIdle : public ConfigureWhileRecording {
 protected:
  void Begin() {
    rig.Set("Integrel", "False");
    rig.StartIdle();
    rig.NextSong("Lanterns", "North Pier");
    rig.Run(60s);
    window.emplace(rig.Rules->ConfigurationAccess(autostart));
    window->Load();
  }
  void ExpectNothingSaved() {
    rig.Run(60s);
    rig.NextSong("Cellar", "Blue Door");
    rig.Run(60s);
    EXPECT_THAT(rig.Recordings(), Each(HasSubstr("/Capture"))) << "nobody asked for a recording";
    EXPECT_FALSE(rig.Logged("Recorded: "));
  }
};

TEST_F(ConfigureWhileIdle, AnotherFormatSavesNothing) {
  Begin();
  window->cboFileFormat(RowOf(window->Controls().cboFileFormat, "VOX"));
  ExpectNothingSaved();
}

TEST_F(ConfigureWhileIdle, AnotherFormatByCommandSavesNothing) {
  Begin();
  EXPECT_TRUE(rig->Parts().Settings.Set("FileFormat", "VOX").Done());
  ExpectNothingSaved();
}

TEST_F(ConfigureWhileIdle, DefaultSettingsSaveNothing) {
  Begin();
  window->cmdDefault();
  EXPECT_EQ(rig->State().Settings.FileFormat, "MP3");
  ExpectNothingSaved();
}

TEST_F(ConfigureWhileRecording, AnotherFormatTakesBackARecordThatWaits) {
  rig.StartIdle();
  rig->cmdRecord();
  ASSERT_NE(Status(), "");
  EXPECT_TRUE(rig->Parts().Settings.Set("FileFormat", "VOX").Done());
  EXPECT_EQ(Status(), "");
  EXPECT_FALSE(State().RecordRequested);
}

TEST_F(ConfigureWhileRecording, AnOpenWindowDoesNotPutBackWhatACommandChanged) {
  Begin();
  window->cboMinLength(RowOf(window->Controls().cboMinLength, "20 Sec"));
  EXPECT_TRUE(rig->Parts().Settings.Set("SongDelay", "900").Done());
  EXPECT_TRUE(rig->Parts().Settings.Set("MaxSongLength", "600").Done());
  Save();
  EXPECT_EQ(rig->State().Settings.SongDelay, 900);
  EXPECT_EQ(rig->State().Settings.MaxSongLength, 600);
  EXPECT_EQ(rig->State().Settings.MinSongLength, 20);
}

TEST_F(ConfigureWhileRecording, EverySavedValueIsThereAfterARestart) {
  Begin();
  window->cboMinLength(RowOf(window->Controls().cboMinLength, "20 Sec"));
  window->cboSongDelay(RowOf(window->Controls().cboSongDelay, "900"));
  window->txtAGCLowLevel("-77");
  window->chkTaskBarMinimized(false);
  window->chkDuplicates(false);
  Save();
  const config::Settings saved = rig->State().Settings;
  config::Settings next;
  config::LoadSettings(config::SettingsSection(rig.Store), rig.Environment, next);
  EXPECT_EQ(next.MinSongLength, saved.MinSongLength);
  EXPECT_EQ(next.SongDelay, 900);
  EXPECT_EQ(next.AGCLowLevel, -77);
  EXPECT_FALSE(next.TaskBarMinimized);
  EXPECT_FALSE(next.SaveDuplicates);
  EXPECT_EQ(next.FileDir, saved.FileDir);
}

}  // namespace
}  // namespace kestrune::test
