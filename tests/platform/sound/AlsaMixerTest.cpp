#include <chrono>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/alsa/AlsaMixer.h"
#include "platform/posix/TemporaryFolder.h"
#include "support/PrivatePulse.h"
#include "support/ScopedVariables.h"

namespace kestrune::platform {
namespace {

using std::chrono::milliseconds;
using test::PrivatePulse;
using ::testing::ElementsAre;

TEST(AlsaMixer, TheCardOfAPcmIsFoundInItsName) {
  EXPECT_THAT(AlsaMixer::CardNames(""), ElementsAre("default"));
  EXPECT_THAT(AlsaMixer::CardNames("default"), ElementsAre("default"));
  EXPECT_THAT(AlsaMixer::CardNames("pulse"), ElementsAre("pulse", "default"));
  EXPECT_THAT(AlsaMixer::CardNames("hw:1,0"), ElementsAre("hw:1"));
  EXPECT_THAT(AlsaMixer::CardNames("plughw:CARD=PCH,DEV=0"), ElementsAre("hw:PCH"));
  EXPECT_THAT(AlsaMixer::CardNames("sysdefault:CARD=USB"), ElementsAre("hw:USB"));
}

TEST(AlsaMixer, AMachineWithoutThatCardHasNoLines) {
  AlsaMixer mixer;
  mixer.Open("hw:CARD=NoSuchCard,DEV=0");
  EXPECT_EQ(mixer.LineCount(), -1);
  EXPECT_EQ(mixer.LineName(), "");
  mixer.SetVolume(5);
  mixer.SetSelected(true);
  EXPECT_FALSE(mixer.Update());
  mixer.Close();
}

/// A card of a few variables; each mixer opens one of its own.
class AlsaCardTest : public ::testing::Test {
 protected:
  AlsaCardTest() {
    std::ofstream(Configuration) << "ctl.testcard { type kestrunetest }\n"
                                 << "ctl_type.kestrunetest { lib \"" << KESTRUNE_TEST_CARD << "\" }\n";
    Mixer.emplace();
    Mixer->Open("testcard");
  }
  AlsaMixer& Line(std::int16_t line) {
    Mixer->SetCurrentLine(line);
    return *Mixer;
  }
  std::int16_t Named(const std::string& name) {
    for (std::int16_t line = 0; line <= Mixer->LineCount(); ++line)
      if (Line(line).LineName() == name && !(name == "Line" && Line(line).HasVolume() != WantVolume))
        return line;
    ADD_FAILURE() << "no line " << name;
    return 0;
  }

  bool WantVolume = true;
  test::TemporaryFolder Folder;
  std::string Configuration = Folder / "asound.conf";
  test::ScopedVariables Variables{{{"ALSA_CONFIG_PATH", Configuration}}};
  std::optional<AlsaMixer> Mixer;
};

TEST_F(AlsaCardTest, LinesAreTheCaptureControlsAndTheChoicesOfASource) {
  std::vector<std::string> names;
  for (std::int16_t line = 0; line <= Mixer->LineCount(); ++line) names.push_back(Line(line).LineName());
  EXPECT_THAT(names, ::testing::UnorderedElementsAre("Line", "Mic", "Front Mic", "Line", "CD"));
}

TEST_F(AlsaCardTest, ALineHasWhatItsControlHas) {
  const std::int16_t line = Named("Line");
  EXPECT_TRUE(Line(line).HasVolume());
  EXPECT_TRUE(Line(line).HasBalance());
  EXPECT_TRUE(Line(line).CanSelect());
  EXPECT_TRUE(Line(line).Selected());
  EXPECT_EQ(Line(line).Volume(), 65535);
  EXPECT_EQ(Line(line).Balance(), 50);
  const std::int16_t mic = Named("Mic");
  EXPECT_TRUE(Line(mic).HasVolume());
  EXPECT_FALSE(Line(mic).HasBalance());
  EXPECT_FALSE(Line(mic).CanSelect());
  const std::int16_t cd = Named("CD");
  EXPECT_FALSE(Line(cd).HasVolume());
  EXPECT_FALSE(Line(cd).HasBalance());
  EXPECT_TRUE(Line(cd).CanSelect());
}

TEST_F(AlsaCardTest, AVolumeIsRoundedToTheCardsSteps) {
  const std::int16_t mic = Named("Mic");
  Line(mic).SetVolume(65535 * 44 / 100);
  EXPECT_EQ(Line(mic).Volume(), 26214) << "four of ten steps";
  Line(mic).SetVolume(0);
  EXPECT_EQ(Line(mic).Volume(), 0);
  Line(mic).SetVolume(65535);
  EXPECT_EQ(Line(mic).Volume(), 65535);
}

TEST_F(AlsaCardTest, ABalanceTakesFromOneSide) {
  const std::int16_t line = Named("Line");
  Line(line).SetBalance(0);
  EXPECT_EQ(Line(line).Balance(), 0);
  EXPECT_EQ(Line(line).Volume(), 65535);
  Line(line).SetBalance(100);
  EXPECT_EQ(Line(line).Balance(), 100);
  Line(line).SetBalance(75);
  EXPECT_NEAR(Line(line).Balance(), 75, 2) << "in steps of the card";
  Line(line).SetVolume(0);
  EXPECT_NEAR(Line(line).Balance(), 75, 2) << "kept through silence";
  Line(line).SetVolume(65535);
  EXPECT_NEAR(Line(line).Balance(), 75, 2);
}

TEST_F(AlsaCardTest, ASwitchSelectsALine) {
  const std::int16_t line = Named("Line");
  Line(line).SetSelected(false);
  EXPECT_FALSE(Line(line).Selected());
  Line(line).SetSelected(true);
  EXPECT_TRUE(Line(line).Selected());
}

TEST_F(AlsaCardTest, OfASourcesChoicesOneIsSelected) {
  WantVolume = false;
  const std::int16_t line = Named("Line");
  const std::int16_t cd = Named("CD");
  EXPECT_TRUE(Line(line).Selected());
  Line(cd).SetSelected(true);
  EXPECT_TRUE(Line(cd).Selected());
  EXPECT_FALSE(Line(line).Selected());
  Line(cd).SetSelected(false);
  EXPECT_TRUE(Line(cd).Selected()) << "the card keeps one";
}

TEST_F(AlsaCardTest, ACardUnpluggedDuringAWriteTakesItsLinesAlongAndIsLookedForAgain) {
  const std::int16_t mic = Named("Mic");
  WantVolume = false;
  const std::int16_t cd = Named("CD");
  for (const bool volume : {true, false}) {
    {
      const test::ScopedVariables unplugged{{{"KESTRUNE_TEST_CARD_UNPLUGGED", "1"}}};
      if (volume) {
        Line(mic).SetVolume(0);
      } else {
        Line(cd).SetSelected(true);
      }
      EXPECT_EQ(Mixer->LineCount(), -1);
      EXPECT_FALSE(Mixer->Update());
    }
    const auto end = std::chrono::steady_clock::now() + milliseconds(5000);
    bool back = false;
    while (!back && std::chrono::steady_clock::now() < end) {
      std::this_thread::sleep_for(milliseconds(20));
      back = Mixer->Update() && Mixer->LineCount() == 4;
    }
    EXPECT_TRUE(back);
  }
}

TEST_F(AlsaCardTest, AClosedMixerReadsNothing) {
  Mixer->Close();
  EXPECT_EQ(Mixer->LineCount(), -1);
  EXPECT_FALSE(Mixer->Update());
}

/// The controls that a sound server offers to programs that know ALSA alone.
class AlsaServerMixerTest : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!PrivatePulse::Installed()) GTEST_SKIP() << "no PulseAudio";
    ASSERT_TRUE(Server.Start());
    std::ofstream(Configuration) << "ctl.radio { type pulse server \"" << Server.Server()
                                 << "\" sink radio source \"radio.monitor\" }\n";
    Mixer.Open("radio");
  }

  PrivatePulse Server;
  std::string Configuration = (Server.Folder() / "asound.conf").string();
  test::ScopedVariables Variables{Server.Environment()};
  test::ScopedVariables AlsaVariables{{{"ALSA_CONFIG_PATH", Configuration}}};
  AlsaMixer Mixer;
};

TEST_F(AlsaServerMixerTest, WhatIsSetReachesTheServerAndIsReadBack) {
  ASSERT_EQ(Mixer.LineCount(), 0) << "the sink is no recording line";
  EXPECT_EQ(Mixer.LineName(), "Capture");
  EXPECT_TRUE(Mixer.Selected());
  Mixer.SetVolume(30000);
  EXPECT_NEAR(Mixer.Volume(), 30000, 2);
  Mixer.SetBalance(20);
  EXPECT_EQ(Mixer.Balance(), 20);
  AlsaMixer second;
  second.Open("radio");
  EXPECT_NEAR(second.Volume(), 30000, 2);
  EXPECT_EQ(second.Balance(), 20);
}

TEST_F(AlsaServerMixerTest, WhatAnotherProgramSetsShowsWithinASecond) {
  ASSERT_TRUE(Server.Control({"set-source-volume", PrivatePulse::kMonitor, "32768"}));
  const auto end = std::chrono::steady_clock::now() + milliseconds(1000);
  while (std::chrono::steady_clock::now() < end && Mixer.Volume() != 32768) {
    static_cast<void>(Mixer.Update());
    std::this_thread::sleep_for(milliseconds(20));
  }
  EXPECT_NEAR(Mixer.Volume(), 32768, 2);
}

}  // namespace
}  // namespace kestrune::platform
