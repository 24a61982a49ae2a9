#include "support/UnitRig.h"

#include <gtest/gtest.h>

#include "base/Text.h"

namespace kestrune::test {

using namespace std::chrono_literals;

UnitRig::UnitRig() {
  Files.Now = [this] { return Loop.Now(); };
  for (int channel = 40; channel <= 55; ++channel) {
    const std::string number = std::to_string(channel);
    Radio.Channels[channel] = {"Station " + number, "Genre", "Artist " + number, "Song " + number};
  }
  Radio.Channels[44] = {"Harbour", "Rock", "Moonlighters", "Slow Tide"};
  // The simplest format and a low rate keep the samples few.
  Set("FileFormat", "WAV");
  Set("WAV_Frequency", "1000");
  Set("WAV_Channels", "1");
  Set("FileDir", "/music/");
  Set("MinSongLength", "10");
  Set("CheckUpdatesAtStartup", "False");
  Set("LegalAgreement", "True");
  // Only the tests of the shelf have one.
  Set("ShelfSongs", "0");
  Set("PortNum", "1");
  Files.MakeFolders("/music");
  Files.MakeFolders("/home/user");
  Files.MakeFolders("/tmp");
  MeetWindows(Windows);
}

void UnitRig::MeetWindows(recorder::Windows& windows) {
  // One unit at a time on the radio's line.
  Rules.reset();
  Unit.reset();
  const recorder::Outside outside{.Loop = Loop,
                                  .pcrComm = Radio,
                                  .Audio = Audio,
                                  .Files = Files,
                                  .FileSync = FileSync,
                                  .CaptureMender = CaptureMender,
                                  .Environment = Environment,
                                  .Settings = Store,
                                  .Dialogs = Dialogs,
                                  .Sounds = Sounds,
                                  .Windows = windows,
                                  .SerialEnumerator = SerialEnumerator,
                                  .Web = Web,
                                  .Processes = Processes,
                                  .SleepInhibitor = SleepInhibitor,
                                  .HistoryStore = History};
  Unit = std::make_unique<recorder::Kestrune>(outside);
  Rules = std::make_unique<presenters::UnitPresenters>(*Unit, outside);
  Unit->SetClosedHandler([this] { Closed = true; });
}

void UnitRig::Start(recorder::StartOutcome expected) {
  EXPECT_EQ(Unit->Load(), expected);
}

void UnitRig::FinishWalk() {
  EXPECT_TRUE(Loop.RunUntil([this] { return !Unit->State().Radio.ChannelsLoading; }, 5min));
}

void UnitRig::StartIdle() {
  Start();
  FinishWalk();
  Run(5s);
}

void UnitRig::NextSong(const std::string& artist, const std::string& song) {
  Radio.Play(Unit->State().Radio.ChannelNumber, artist, song);
  Run(3s);
}

void UnitRig::CloseAndWait() {
  Unit->Close();
  EXPECT_TRUE(Loop.RunUntil([this] { return Closed; }, 1min));
}

std::vector<std::string> UnitRig::LogTexts() const {
  // "Jan 1, 2005 12:00:00 " and the text; the day has one digit or two.
  std::vector<std::string> texts;
  for (const std::string& line : Unit->Parts().Log.List().Lines()) {
    const std::size_t colon = line.find(':');
    texts.push_back(line.substr(colon + 7));
  }
  return texts;
}

bool UnitRig::Logged(std::string_view text) const {
  for (const std::string& line : LogTexts()) {
    if (line.find(text) != std::string::npos) return true;
  }
  return false;
}

std::vector<std::string> UnitRig::Recordings() const {
  std::vector<std::string> names;
  for (const std::string& path : Files.AllFiles()) {
    if (path.starts_with("/music/")) names.push_back(path.substr(7));
  }
  return names;
}

}  // namespace kestrune::test
