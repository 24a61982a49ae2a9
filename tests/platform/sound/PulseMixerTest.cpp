#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/pulse/PulseMixer.h"
#include "platform/pulse/PulseSourceControl.h"
#include "support/PrivatePulse.h"
#include "support/ScopedVariables.h"

namespace kestrune::platform {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;
using test::PrivatePulse;
using ::testing::ElementsAre;

/// A source with ports, as a server keeps it.
class FakeSource final : public PulseSourceControl {
 public:
  std::optional<PulseSourceState> Now;
  bool News = false;
  std::vector<std::string> Asked;

  FakeSource() {
    Now.emplace();
    Now->Description = "Built-in Audio";
    Now->Ports = {{"line", "Line In"}, {"mic", "Microphone"}};
    Now->ActivePort = "mic";
    pa_channel_map_init_stereo(&Now->Channels);
    pa_cvolume_set(&Now->Volume, 2, PA_VOLUME_NORM);
  }

  void Open(const std::string& source) override { Asked.push_back("open " + source); }
  void Close() override { Asked.emplace_back("close"); }
  [[nodiscard]] bool Update() override { return std::exchange(News, false); }
  [[nodiscard]] const std::optional<PulseSourceState>& State() const override { return Now; }
  void SetPort(const std::string& name) override {
    Asked.push_back("port " + name);
    Now->ActivePort = name;
  }
  void SetVolume(const pa_cvolume& volume) override { Now->Volume = volume; }
  void SetMute(bool muted) override {
    Asked.emplace_back(muted ? "mute" : "unmute");
    Now->Muted = muted;
  }
};

class PulsePortsTest : public ::testing::Test {
 protected:
  PulsePortsTest() {
    Mixer.Open("card");
    Source.Asked.clear();
  }
  PulseMixer& Line(std::int16_t line) {
    Mixer.SetCurrentLine(line);
    return Mixer;
  }

  std::unique_ptr<FakeSource> Owned = std::make_unique<FakeSource>();
  FakeSource& Source = *Owned;
  PulseMixer Mixer{std::move(Owned)};
};

TEST_F(PulsePortsTest, EachPortIsALine) {
  ASSERT_EQ(Mixer.LineCount(), 1) << "the highest index";
  EXPECT_EQ(Line(0).LineName(), "Line In");
  EXPECT_EQ(Line(1).LineName(), "Microphone");
  EXPECT_TRUE(Line(0).CanSelect());
  EXPECT_FALSE(Line(0).Selected());
  EXPECT_TRUE(Line(1).Selected());
}

TEST_F(PulsePortsTest, OnlyTheActivePortHasVolumeAndBalance) {
  EXPECT_FALSE(Line(0).HasVolume());
  EXPECT_FALSE(Line(0).HasBalance());
  EXPECT_TRUE(Line(1).HasVolume());
  EXPECT_TRUE(Line(1).HasBalance());
  EXPECT_EQ(Line(1).Volume(), 65535);
  EXPECT_EQ(Line(1).Balance(), 50);
  Line(0).SetVolume(5);
  EXPECT_EQ(Line(1).Volume(), 65535) << "a write to a line without one does nothing";
}

TEST_F(PulsePortsTest, SelectingALineMakesItsPortTheActiveOne) {
  Line(0).SetSelected(true);
  EXPECT_THAT(Source.Asked, ElementsAre("port line"));
  EXPECT_TRUE(Line(0).Selected());
  EXPECT_TRUE(Line(0).HasVolume());
  EXPECT_FALSE(Line(1).Selected());
}

TEST_F(PulsePortsTest, TakingTheSelectionAwayMutesAndGivingItEndsTheMute) {
  Line(1).SetSelected(false);
  EXPECT_FALSE(Line(1).Selected());
  Line(0).SetSelected(true);
  EXPECT_TRUE(Line(0).Selected());
  Line(1).SetSelected(false);
  EXPECT_THAT(Source.Asked, ElementsAre("mute", "port line", "unmute"))
      << "a line that is not selected has nothing to lose";
}

TEST_F(PulsePortsTest, ALoudVolumeIsShownAsFull) {
  pa_cvolume_set(&Source.Now->Volume, 2, PA_VOLUME_NORM * 3 / 2);
  Source.News = true;
  EXPECT_TRUE(Mixer.Update());
  EXPECT_EQ(Line(1).Volume(), 65535);
}

TEST_F(PulsePortsTest, AMonoSourceHasNoBalance) {
  pa_channel_map_init_mono(&Source.Now->Channels);
  pa_cvolume_set(&Source.Now->Volume, 1, PA_VOLUME_NORM / 2);
  Source.News = true;
  EXPECT_TRUE(Mixer.Update());
  EXPECT_TRUE(Line(1).HasVolume());
  EXPECT_FALSE(Line(1).HasBalance());
}

TEST_F(PulsePortsTest, ASourceThatGoesTakesItsLinesAlong) {
  Source.Now.reset();
  Source.News = true;
  EXPECT_TRUE(Mixer.Update());
  EXPECT_EQ(Mixer.LineCount(), -1);
  EXPECT_EQ(Line(0).LineName(), "");
  Line(0).SetVolume(5);
  Line(0).SetSelected(true);
  Line(-3).SetBalance(5);
  EXPECT_TRUE(Source.Asked.empty());
}

class PulseMixerTest : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!PrivatePulse::Installed()) GTEST_SKIP() << "no PulseAudio";
    ASSERT_TRUE(Server.Start());
    Mixer.Open(PrivatePulse::kMonitor);
  }
  /// Whether it comes true within a second, as the window's beat would see it.
  template <typename Condition>
  bool Soon(const Condition& condition, milliseconds limit = milliseconds(1000)) {
    const auto end = steady_clock::now() + limit;
    while (steady_clock::now() < end) {
      static_cast<void>(Mixer.Update());
      if (condition()) return true;
      std::this_thread::sleep_for(milliseconds(20));
    }
    return false;
  }

  PrivatePulse Server{{"module-null-sink sink_name=one channels=1 sink_properties=device.description=Mono"}};
  test::ScopedVariables Variables{Server.Environment()};
  PulseMixer Mixer{Server.Server()};
};

TEST_F(PulseMixerTest, ASourceWithoutPortsIsOneLine) {
  ASSERT_EQ(Mixer.LineCount(), 0);
  EXPECT_NE(Mixer.LineName().find("Radio"), std::string::npos);
  EXPECT_TRUE(Mixer.HasVolume());
  EXPECT_EQ(Mixer.Volume(), 65535);
  EXPECT_TRUE(Mixer.HasBalance());
  EXPECT_EQ(Mixer.Balance(), 50);
  EXPECT_TRUE(Mixer.CanSelect());
  EXPECT_TRUE(Mixer.Selected());
}

TEST_F(PulseMixerTest, EveryVolumeComesBackAsItWasSet) {
  for (const std::int32_t volume : {0, 1, 5, 20000, 32768, 65534, 65535}) {
    Mixer.SetVolume(volume);
    EXPECT_EQ(Mixer.Volume(), volume);
  }
}

TEST_F(PulseMixerTest, EveryBalanceComesBackAsItWasSet) {
  Mixer.SetVolume(40000);
  for (std::int16_t balance = 0; balance <= 100; ++balance) {
    Mixer.SetBalance(balance);
    EXPECT_EQ(Mixer.Balance(), balance);
    EXPECT_EQ(Mixer.Volume(), 40000);
  }
}

TEST_F(PulseMixerTest, TheBalanceOutlivesSilence) {
  Mixer.SetBalance(20);
  Mixer.SetVolume(0);
  EXPECT_EQ(Mixer.Balance(), 20);
  Mixer.SetBalance(30);
  EXPECT_EQ(Mixer.Balance(), 30);
  Mixer.SetVolume(30000);
  EXPECT_EQ(Mixer.Balance(), 30);
  EXPECT_EQ(Mixer.Volume(), 30000);
}

TEST_F(PulseMixerTest, SelectionIsTheMute) {
  Mixer.SetSelected(false);
  EXPECT_FALSE(Mixer.Selected());
  Mixer.SetSelected(true);
  EXPECT_TRUE(Mixer.Selected());
}

TEST_F(PulseMixerTest, WhatAnotherProgramSetsShowsWithinASecond) {
  ASSERT_TRUE(Server.Control({"set-source-volume", PrivatePulse::kMonitor, "32768"}));
  EXPECT_TRUE(Soon([this] { return Mixer.Volume() == 32768; })) << Mixer.Volume();
  ASSERT_TRUE(Server.Control({"set-source-mute", PrivatePulse::kMonitor, "1"}));
  EXPECT_TRUE(Soon([this] { return !Mixer.Selected(); }));
}

TEST_F(PulseMixerTest, AnUndisturbedServerBringsNoNews) {
  while (Mixer.Update()) {
  }
  std::this_thread::sleep_for(milliseconds(50));
  EXPECT_FALSE(Mixer.Update());
}

TEST_F(PulseMixerTest, AnEmptyDeviceIsTheServersDefaultOne) {
  ASSERT_TRUE(Server.Control({"set-default-source", "one.monitor"}));
  Mixer.Open("");
  ASSERT_EQ(Mixer.LineCount(), 0);
  EXPECT_NE(Mixer.LineName().find("Mono"), std::string::npos);
  EXPECT_FALSE(Mixer.HasBalance());
}

TEST_F(PulseMixerTest, ADeviceThatIsNotThereHasNoLines) {
  Mixer.Open("nosuch");
  EXPECT_EQ(Mixer.LineCount(), -1);
  Mixer.SetVolume(5);
}

TEST_F(PulseMixerTest, AServerThatDiesTakesTheLinesAndBringsThemBack) {
  Server.Kill();
  EXPECT_TRUE(Soon([this] { return Mixer.LineCount() == -1; }));
  Mixer.SetVolume(5);
  Mixer.SetSelected(false);
  ASSERT_TRUE(Server.Start());
  EXPECT_TRUE(Soon([this] { return Mixer.LineCount() == 0; }, milliseconds(3000)));
}

TEST(PulseMixer, WithoutAServerNothingHangs) {
  const PrivatePulse nobody;
  const test::ScopedVariables variables{nobody.Environment()};
  PulseMixer mixer("unix:/nowhere/native");
  const auto start = steady_clock::now();
  mixer.Open("card");
  EXPECT_EQ(mixer.LineCount(), -1);
  while (mixer.Update()) {
  }
  mixer.SetVolume(3);
  mixer.Close();
  EXPECT_LT(steady_clock::now() - start, milliseconds(1500));
}

TEST_F(PulseMixerTest, AClosedMixerReadsNothing) {
  Mixer.Close();
  EXPECT_EQ(Mixer.LineCount(), -1);
  EXPECT_FALSE(Mixer.Update());
  Mixer.SetVolume(3);
}

}  // namespace
}  // namespace kestrune::platform
