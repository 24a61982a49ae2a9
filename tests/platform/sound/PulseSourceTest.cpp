#include <chrono>
#include <csignal>
#include <cstdint>
#include <iostream>
#include <memory>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "platform/pulse/PulseSource.h"
#include "platform/ring/RingListener.h"
#include "platform/ring/RingRecorder.h"
#include "platform/sound/CollectingSink.h"
#include "platform/sound/FrameLedger.h"
#include "recorder/InputDevices.h"
#include "support/PrivatePulse.h"
#include "support/RealEventLoop.h"
#include "support/ScopedVariables.h"
#include "support/SimulatedSoundSource.h"

namespace kestrune::platform {
namespace {

using std::chrono::milliseconds;
using test::PrivatePulse;
using test::RealEventLoop;
using test::SimulatedSoundSource;
using test::WriteNumberedFrames;

class PulseSourceTest : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!PrivatePulse::Installed()) GTEST_SKIP() << "no PulseAudio";
    ASSERT_TRUE(Server.Start());
  }

  std::filesystem::path Numbers(std::uint32_t count, std::uint32_t first = 1) {
    auto file = Server.Folder() / ("numbers" + std::to_string(first) + ".raw");
    WriteNumberedFrames(file, count, first, PrivatePulse::kLeadIn);
    return file;
  }

  PrivatePulse Server{{"module-null-sink sink_name=a_sink sink_properties=device.description=Aardvark",
                       "module-pipe-source source_name=z_input file=/dev/null/none",
                       "module-sine-source source_name=b_input source_properties=device.description=Zither",
                       "module-sine-source source_name=a_input source_properties=device.description=Zither",
                       "module-sine-source source_name=c_input source_properties=device.description=Banjo"}};
  // The client library keeps files of its own in the home folder.
  test::ScopedVariables Variables{Server.Environment()};
  RealEventLoop Loop;
};

TEST_F(PulseSourceTest, WithoutAServerThereIsNothingAndNothingHangs) {
  CollectingSink sink;
  PulseSource source("unix:/nowhere/native");
  EXPECT_FALSE(source.Reachable());
  EXPECT_TRUE(source.Devices().empty());
  EXPECT_FALSE(source.Usable("radio.monitor"));
  EXPECT_NE(source.Open("radio.monitor", {}, sink), "");
  source.Close();
}

TEST_F(PulseSourceTest, InputsComeFirstThenMonitorsEachByDescriptionAndName) {
  PulseSource source(Server.Server());
  const auto check = [&] {
    std::vector<std::string> ids;
    for (const SoundDevice& device : source.Devices()) ids.push_back(device.Id);
    EXPECT_EQ(ids,
              (std::vector<std::string>{"c_input", "a_input", "b_input", "a_sink.monitor", "radio.monitor"}));
  };
  check();
  EXPECT_EQ(source.Devices().at(0).Name, "Banjo");
  ASSERT_TRUE(Server.Restart());
  check();
}

TEST_F(PulseSourceTest, ADeviceThatTheServerDoesNotHaveIsNotUsable) {
  CollectingSink sink;
  PulseSource source(Server.Server());
  EXPECT_TRUE(source.Usable("radio.monitor"));
  EXPECT_TRUE(source.Usable("a_input"));
  EXPECT_FALSE(source.Usable("other"));
  const std::string error = source.Open("other", {}, sink);
  EXPECT_NE(error, "");
  // The next opening ends the attempts at the one that failed.
  EXPECT_EQ(source.Open("radio.monitor", {}, sink), "");
  EXPECT_TRUE(sink.WaitFor(44100, milliseconds(5000)));
}

TEST_F(PulseSourceTest, DeliversInTheAskedFormatAndIsQuietAfterClose) {
  PulseSource source(Server.Server());
  auto player = Server.Play(Numbers(44100 * 60));
  for (const PcmFormat& format : {PcmFormat{8000, 1}, PcmFormat{22050, 2}, PcmFormat{48000, 2}}) {
    CollectingSink sink;
    ASSERT_EQ(source.Open("radio.monitor", format, sink), "");
    // The idle device had planned to sleep: that is a late start.
    ASSERT_TRUE(sink.WaitFor(1, milliseconds(10000)));
    const std::int64_t lostAtStart = sink.Lost();
    EXPECT_LT(lostAtStart, 3 * format.SampleRate);
    std::this_thread::sleep_for(milliseconds(500));
    const std::size_t before = sink.Count();
    const auto start = std::chrono::steady_clock::now();
    std::this_thread::sleep_for(milliseconds(1500));
    const std::size_t count = sink.Count() - before;
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    source.Close();
    EXPECT_NEAR(static_cast<double>(count) / seconds, format.SampleRate * format.Channels,
                format.SampleRate * format.Channels * 0.2);
    EXPECT_EQ(sink.Lost(), lostAtStart);
    const std::size_t after = sink.Count();
    std::this_thread::sleep_for(milliseconds(200));
    EXPECT_EQ(sink.Count(), after);
  }
}

// What plays into the server, cut into captures the way a recording cuts, is what went in.
TEST_F(PulseSourceTest, TwoHundredCutsOfARealServersSoundLoseAndDoubleNothing) {
  const auto seed = std::random_device{}();
  std::cout << "seed " << seed << '\n';
  std::mt19937 random(seed);
  const auto file = Numbers(44100 * 60);
  PulseSource source(Server.Server());
  RingRecorder recorder(Loop, source);
  std::vector<std::int16_t> taken;
  recorder.SetBlockHandler([&] {
    const auto block = recorder.GetBlock();
    taken.insert(taken.end(), block.begin(), block.end());
  });
  ASSERT_EQ(recorder.DeviceCount(), 6);
  recorder.SetDeviceIndex(4);
  recorder.SetFormat({44100, 2});
  recorder.SetBlockSize(recorder.TimeToBytes(100));
  ASSERT_EQ(recorder.StartRecording().Number, RingRecorder::kStarted);
  ASSERT_TRUE(Loop.RunUntil([&] { return !taken.empty(); }, milliseconds(10000)));
  // The idle device had planned to sleep.
  const std::int64_t lostAtStart = recorder.FramesLost();
  auto player = Server.Play(file);

  FrameLedger ledger;
  int cuts = 0;
  const auto cut = [&] {
    recorder.Stop();
    ledger.Add(SimulatedSoundSource::FrameNumbers(taken));
    taken.clear();
    if (random() % 5 == 0) Loop.Sleep(milliseconds(random() % 40));
    ASSERT_EQ(recorder.StartRecording().Number, RingRecorder::kStarted);
    ++cuts;
  };
  while (cuts < 220) {
    Loop.Run(milliseconds(random() % 150));
    if (random() % 20 == 0) Loop.Sleep(milliseconds(600));
    cut();
  }
  recorder.Stop();
  ledger.Add(SimulatedSoundSource::FrameNumbers(taken));
  EXPECT_GT(ledger.Heard, 44100U * 5);
  EXPECT_EQ(ledger.First, 1U);
  EXPECT_EQ(ledger.Lost, 0U);
  EXPECT_EQ(ledger.Doubled, 0U);
  EXPECT_EQ(ledger.Silent, 0U);
  EXPECT_EQ(recorder.FramesLost(), lostAtStart);
  std::cout << cuts << " cuts, " << ledger.Heard << " frames in a row\n";
}

TEST_F(PulseSourceTest, AListenerThatComesAndGoesTakesNothingFromTheRecorderOfTheSameDevice) {
  PulseSource source(Server.Server());
  RingRecorder recorder(Loop, source);
  std::vector<std::int16_t> taken;
  recorder.SetBlockHandler([&] {
    const auto block = recorder.GetBlock();
    taken.insert(taken.end(), block.begin(), block.end());
  });
  ASSERT_EQ(recorder.DeviceCount(), 6);
  recorder.SetDeviceIndex(4);
  recorder.SetFormat({44100, 2});
  EXPECT_EQ(recorder.OpenDeviceId(), "");
  ASSERT_EQ(recorder.StartRecording().Number, RingRecorder::kStarted);
  EXPECT_EQ(recorder.OpenDeviceId(), "radio.monitor");
  ASSERT_TRUE(Loop.RunUntil([&] { return !taken.empty(); }, milliseconds(10000)));
  // The idle device had planned to sleep.
  const std::int64_t lostAtStart = recorder.FramesLost();
  auto player = Server.Play(Numbers(44100 * 60));
  Loop.Run(milliseconds(1000));

  RingListener listener([this] { return std::make_unique<PulseSource>(Server.Server()); }, true);
  for (int round = 0; round < 6; ++round) {
    const bool same = round % 2 == 0;
    ASSERT_TRUE(listener.Open(same ? "radio.monitor" : "a_input", {44100, 2}));
    std::vector<std::int16_t> heard;
    ASSERT_TRUE(Loop.RunUntil(
        [&] {
          const std::vector<std::int16_t> more = listener.Take();
          heard.insert(heard.end(), more.begin(), more.end());
          return heard.size() > 2 * 44100U;
        },
        milliseconds(10000)));
    if (same) {
      FrameLedger ledger;
      ledger.Add(SimulatedSoundSource::FrameNumbers(heard));
      EXPECT_GT(ledger.Heard, 40000U) << "it hears the same sound";
      EXPECT_EQ(ledger.Lost, 0U);
    }
    if (round == 3) listener.Close();
  }
  recorder.Stop();
  FrameLedger ledger;
  ledger.Add(SimulatedSoundSource::FrameNumbers(taken));
  EXPECT_EQ(ledger.First, 1U);
  EXPECT_GT(ledger.Heard, 44100U * 2);
  EXPECT_EQ(ledger.Lost, 0U);
  EXPECT_EQ(ledger.Doubled, 0U);
  EXPECT_EQ(ledger.Silent, 0U);
  EXPECT_EQ(recorder.FramesLost(), lostAtStart);
}

TEST_F(PulseSourceTest, AServerThatIsKilledAndComesBackIsRecordedOn) {
  PulseSource source(Server.Server());
  RingRecorder recorder(Loop, source);
  std::vector<std::int16_t> taken;
  recorder.SetBlockHandler([&] {
    const auto block = recorder.GetBlock();
    taken.insert(taken.end(), block.begin(), block.end());
  });
  ASSERT_EQ(recorder.DeviceCount(), 6);
  recorder.SetDeviceIndex(4);
  recorder.SetFormat({44100, 2});
  ASSERT_EQ(recorder.StartRecording().Number, RingRecorder::kStarted);
  ASSERT_TRUE(Loop.RunUntil([&] { return !taken.empty(); }, milliseconds(10000)));
  auto player = Server.Play(Numbers(44100 * 60));
  Loop.Run(milliseconds(1500));
  ASSERT_GT(taken.size(), 44100U);
  const std::int64_t lostAtStart = recorder.FramesLost();

  const auto killed = std::chrono::steady_clock::now();
  Server.Kill();
  Loop.Run(milliseconds(2000));
  std::size_t quiet = taken.size();
  Loop.Run(milliseconds(500));
  EXPECT_EQ(taken.size(), quiet);
  // A cut while nothing is there.
  const auto cutStart = std::chrono::steady_clock::now();
  recorder.Stop();
  ASSERT_EQ(recorder.StartRecording().Number, RingRecorder::kStarted);
  EXPECT_LT(std::chrono::steady_clock::now() - cutStart, milliseconds(100))
      << "the main thread waits for no server";

  quiet = taken.size();
  ASSERT_TRUE(Server.Start());
  ASSERT_TRUE(Loop.RunUntil([&] { return taken.size() > quiet; }, milliseconds(10000)));
  const double gap = std::chrono::duration<double>(std::chrono::steady_clock::now() - killed).count();
  EXPECT_NEAR(static_cast<double>(recorder.FramesLost() - lostAtStart) / 44100, gap, 0.4);
  const std::int64_t lost = recorder.FramesLost();

  taken.clear();
  auto again = Server.Play(Numbers(44100 * 20, 5'000'001));
  Loop.Run(milliseconds(3000));
  recorder.Stop();
  FrameLedger ledger;
  ledger.Add(SimulatedSoundSource::FrameNumbers(taken));
  EXPECT_EQ(ledger.First, 5'000'001U);
  EXPECT_GT(ledger.Heard, 44100U);
  EXPECT_EQ(ledger.Lost + ledger.Doubled + ledger.Silent, 0U);
  EXPECT_EQ(recorder.FramesLost(), lost);
}

/// Records from the server, cut as a recording cuts.
class PulseRecorder {
 public:
  PulseRecorder(RealEventLoop& loop, const PrivatePulse& server)
      : Source(server.Server()), Recorder(loop, Source) {
    Recorder.SetBlockHandler([this] { Taken += Recorder.GetBlock().size(); });
    Recorder.SetFormat({44100, 2});
  }

  /// How long a cut takes the main thread.
  std::chrono::milliseconds Cut() {
    const auto start = std::chrono::steady_clock::now();
    Recorder.Stop();
    EXPECT_EQ(Recorder.StartRecording().Number, RingRecorder::kStarted);
    Taken = 0;
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start);
  }

  PulseSource Source;
  RingRecorder Recorder;
  std::size_t Taken = 0;  ///< samples since the last cut
};

TEST_F(PulseSourceTest, TheMapperStaysWithItsDeviceWhileTheServerStartsAnew) {
  PulseRecorder rig(Loop, Server);
  ASSERT_EQ(rig.Recorder.DeviceCount(), 6);
  rig.Recorder.SetDeviceIndex(5);
  ASSERT_EQ(rig.Recorder.DeviceName(), RingRecorder::kMapperName);
  ASSERT_EQ(rig.Recorder.StartRecording().Number, RingRecorder::kStarted);
  ASSERT_TRUE(Loop.RunUntil([&] { return rig.Taken > 44100; }, milliseconds(10000)));
  Server.Kill();
  Loop.Run(milliseconds(1500));
  EXPECT_LT(rig.Cut(), milliseconds(100));
  Loop.Run(milliseconds(1500));
  EXPECT_EQ(rig.Taken, 0U);
  ASSERT_TRUE(Server.Start());
  ASSERT_TRUE(Loop.RunUntil([&] { return rig.Taken > 44100; }, milliseconds(10000)));
  EXPECT_EQ(rig.Recorder.DeviceId(), "c_input");
  rig.Recorder.Stop();
  // The song that began without a server has its sound from the server's return on, and knows what it lacks.
  ASSERT_EQ(rig.Recorder.Sound().Gaps.size(), 1U);
  EXPECT_EQ(rig.Recorder.Sound().Gaps[0].At, 0);
  EXPECT_GT(rig.Recorder.Sound().Lost(), 44100);
  EXPECT_GT(rig.Recorder.Sound().Frames, 22050);
}

TEST_F(PulseSourceTest, ADeviceThatCannotBeOpenedAtACutIsTriedAgainUntilItCan) {
  PulseRecorder rig(Loop, Server);
  ASSERT_EQ(rig.Recorder.DeviceCount(), 6);
  ASSERT_EQ(rig.Recorder.StartRecording().Number, RingRecorder::kStarted);
  ASSERT_TRUE(Loop.RunUntil([&] { return rig.Taken > 44100; }, milliseconds(10000)));
  Server.Kill();
  Loop.Run(milliseconds(200));
  // Another format needs another stream, and there is no server to make it.
  rig.Recorder.SetFormat({22050, 1});
  EXPECT_LT(rig.Cut(), milliseconds(800));
  EXPECT_NE(rig.Recorder.OpenError(), "");
  Loop.Run(milliseconds(2500));
  EXPECT_EQ(rig.Taken, 0U);
  ASSERT_TRUE(Server.Start());
  ASSERT_TRUE(Loop.RunUntil([&] { return rig.Taken > 11025; }, milliseconds(10000)));
  rig.Recorder.Stop();
  EXPECT_GT(rig.Recorder.Sound().Lost(), 2 * 22050);
}

TEST_F(PulseSourceTest, AServerThatAnswersNothingHoldsNobodyUp) {
  PulseRecorder rig(Loop, Server);
  ASSERT_EQ(rig.Recorder.DeviceCount(), 6);
  rig.Recorder.SetDeviceIndex(5);
  ASSERT_EQ(rig.Recorder.StartRecording().Number, RingRecorder::kStarted);
  ASSERT_TRUE(Loop.RunUntil([&] { return rig.Taken > 44100; }, milliseconds(10000)));
  Server.Halt();
  Loop.Run(milliseconds(300));
  EXPECT_LT(rig.Cut(), milliseconds(100));
  Loop.Run(milliseconds(2000));
  EXPECT_EQ(rig.Taken, 0U);
  EXPECT_LT(rig.Cut(), milliseconds(100));
  EXPECT_GT(rig.Recorder.FramesLost(), 44100);
  rig.Recorder.SetFormat({22050, 1});
  EXPECT_LT(rig.Cut(), milliseconds(800));
  EXPECT_NE(rig.Recorder.OpenError(), "");
  Loop.Run(milliseconds(1500));
  Server.Continue();
  EXPECT_TRUE(Loop.RunUntil([&] { return rig.Taken > 11025; }, milliseconds(10000)));
}

TEST_F(PulseSourceTest, ADeviceNamedWithTheMarksOfTheListTextIsRecordedFrom) {
  ASSERT_TRUE(Server.Control({"load-module", "module-sine-source", "source_name=odd",
                              "source_properties=device.description=50%#0%Line#1%"}));
  PulseRecorder rig(Loop, Server);
  const recorder::InputDevices found =
      recorder::EnumerateInputDevices(rig.Recorder, {.Index = 0, .Id = "odd"});
  EXPECT_EQ(found.Configured, "50%#0%Line#1%");
  ASSERT_EQ(found.Listed.size(), 6U);
  rig.Recorder.SetDeviceIndex(found.Index);
  EXPECT_EQ(rig.Recorder.DeviceId(), "odd");
  ASSERT_EQ(rig.Recorder.StartRecording().Number, RingRecorder::kStarted);
  EXPECT_TRUE(Loop.RunUntil([&] { return rig.Taken > 44100; }, milliseconds(10000)));
}

TEST_F(PulseSourceTest, TheStreamStaysAwayFromOtherDevicesWhenItsOwnGoes) {
  CollectingSink sink;
  PulseSource source(Server.Server());
  ASSERT_EQ(source.Open("c_input", {44100, 2}, sink), "");
  ASSERT_TRUE(sink.WaitFor(44100, milliseconds(5000)));
  // The rescue module would put orphaned streams on another source.
  ASSERT_TRUE(Server.Control({"load-module", "module-rescue-streams"}));
  ASSERT_TRUE(Server.Control({"set-default-source", "a_input"}));
  ASSERT_TRUE(Server.Control({"unload-module", "module-sine-source"}));
  std::this_thread::sleep_for(milliseconds(500));
  const std::size_t quiet = sink.Count();
  std::this_thread::sleep_for(milliseconds(1500));
  EXPECT_EQ(sink.Count(), quiet);
  ASSERT_TRUE(Server.Control({"load-module", "module-sine-source", "source_name=c_input"}));
  EXPECT_TRUE(sink.WaitFor(quiet + 8820, milliseconds(10000)));
  EXPECT_NEAR(static_cast<double>(sink.Lost()), 44100 * 2.5, 44100 * 1.5);
}

TEST_F(PulseSourceTest, ASuspendedSourceIsCountedAsLostAndGoesOn) {
  CollectingSink sink;
  PulseSource source(Server.Server());
  ASSERT_EQ(source.Open("a_input", {44100, 2}, sink), "");
  ASSERT_TRUE(sink.WaitFor(44100, milliseconds(5000)));
  EXPECT_EQ(sink.Lost(), 0);
  ASSERT_TRUE(Server.Control({"suspend-source", "a_input", "1"}));
  std::this_thread::sleep_for(milliseconds(200));
  const std::size_t quiet = sink.Count();
  std::this_thread::sleep_for(milliseconds(1500));
  EXPECT_EQ(sink.Count(), quiet);
  ASSERT_TRUE(Server.Control({"suspend-source", "a_input", "0"}));
  ASSERT_TRUE(sink.WaitFor(quiet + 8820, milliseconds(5000)));
  EXPECT_NEAR(static_cast<double>(sink.Lost()), 44100 * 1.7, 44100 * 0.4);
}

}  // namespace
}  // namespace kestrune::platform
