#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "platform/alsa/AlsaSource.h"
#include "platform/ring/RingRecorder.h"
#include "platform/sound/CollectingSink.h"
#include "platform/sound/FrameLedger.h"
#include "support/PrivatePulse.h"
#include "support/RealEventLoop.h"
#include "support/ScopedVariables.h"
#include "support/SimulatedSoundSource.h"

namespace kestrune::platform {
namespace {

using std::chrono::milliseconds;
using test::PrivatePulse;
using test::SimulatedSoundSource;
using test::WriteNumberedFrames;

/// ALSA with a configuration of the test's own: its devices are doors to a private sound server.
class AlsaSourceTest : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!PrivatePulse::Installed()) GTEST_SKIP() << "no PulseAudio";
    ASSERT_TRUE(Server.Start());
    const auto& file = Configuration;
    const std::string door = "type pulse server \"" + Server.Server() + "\" device \"radio.monitor\"";
    std::ofstream(file) << "</usr/share/alsa/alsa.conf>\n"
                        << "pcm.zradio { " << door << " hint { show on description \"Z radio\" } }\n"
                        << "pcm.aradio { " << door << " hint { show on description \"A radio\" } }\n"
                        << "pcm.broken { type pulse server \"unix:/nowhere/native\" hint { show on } }\n"
                        // Knows two channels only, so that one needs the plug.
                        << "pcm.emulated { type mmap_emul slave.pcm aradio }\n"
                        << "pcm.narrow { type multi slaves.a { pcm emulated channels 2 }"
                           " bindings.0 { slave a channel 0 } bindings.1 { slave a channel 1 } }\n"
                        << "pcm.!default { " << door << " hint { show on description \"Default\" } }\n";
  }

  PrivatePulse Server;
  std::filesystem::path Configuration = Server.Folder() / "asound.conf";
  test::ScopedVariables Variables{Server.Environment()};
  test::ScopedVariables AlsaVariables{{{"ALSA_CONFIG_PATH", Configuration.string()}}};
  CollectingSink Sink;
};

TEST_F(AlsaSourceTest, DefaultComesFirstAndTheRestSorted) {
  AlsaSource source;
  std::vector<std::string> ids;
  for (const SoundDevice& device : source.Devices()) ids.push_back(device.Id);
  ASSERT_GE(ids.size(), 4U);
  EXPECT_EQ(ids[0], "default");
  EXPECT_TRUE(std::is_sorted(ids.begin() + 1, ids.end()));
  EXPECT_EQ(std::count(ids.begin(), ids.end(), "aradio"), 1);
  EXPECT_EQ(std::count(ids.begin(), ids.end(), "zradio"), 1);
  EXPECT_EQ(std::count(ids.begin(), ids.end(), "null"), 0);
}

TEST_F(AlsaSourceTest, ADeviceThatDoesNotOpenIsNotUsable) {
  AlsaSource source;
  EXPECT_TRUE(source.Usable("default"));
  EXPECT_TRUE(source.Usable("aradio"));
  EXPECT_FALSE(source.Usable("broken"));
  EXPECT_FALSE(source.Usable("nosuch"));
  EXPECT_NE(source.Open("nosuch", {}, Sink), "");
  EXPECT_NE(source.Open("broken", {}, Sink), "");
}

TEST_F(AlsaSourceTest, RecordsWhatIsPlayedWithoutLossOrDoubling) {
  const auto file = Server.Folder() / "numbers.raw";
  WriteNumberedFrames(file, 44100 * 60, 1, PrivatePulse::kLeadIn);
  test::RealEventLoop loop;
  AlsaSource source;
  RingRecorder recorder(loop, source);
  std::vector<std::int16_t> taken;
  recorder.SetBlockHandler([&] {
    const auto block = recorder.GetBlock();
    taken.insert(taken.end(), block.begin(), block.end());
  });
  recorder.SetFormat({44100, 2});
  ASSERT_EQ(recorder.StartRecording().Number, RingRecorder::kStarted);
  ASSERT_TRUE(loop.RunUntil([&] { return !taken.empty(); }, milliseconds(10000)));
  const std::int64_t lostAtStart = recorder.FramesLost();
  auto player = Server.Play(file);
  for (int cut = 0; cut < 40; ++cut) {
    loop.Run(milliseconds(90 + cut));
    recorder.Stop();
    ASSERT_EQ(recorder.StartRecording().Number, RingRecorder::kStarted);
  }
  recorder.Stop();
  FrameLedger ledger;
  ledger.Add(SimulatedSoundSource::FrameNumbers(taken));
  EXPECT_EQ(ledger.First, 1U);
  EXPECT_GT(ledger.Heard, 44100U * 2);
  EXPECT_EQ(ledger.Lost + ledger.Doubled + ledger.Silent, 0U);
  EXPECT_EQ(recorder.FramesLost(), lostAtStart);
}

TEST_F(AlsaSourceTest, AFormatThatTheDeviceDoesNotHaveIsConverted) {
  const auto file = Server.Folder() / "numbers.raw";
  WriteNumberedFrames(file, 44100 * 60);
  auto player = Server.Play(file);
  AlsaSource source;
  for (const char* id : {"aradio", "narrow"}) {
    for (const PcmFormat& format : {PcmFormat{8000, 1}, PcmFormat{22050, 2}, PcmFormat{48000, 2}}) {
      const auto before = Sink.Count();
      ASSERT_EQ(source.Open(id, format, Sink), "") << id << format.SampleRate;
      EXPECT_TRUE(Sink.WaitFor(before + static_cast<std::size_t>(format.SampleRate * format.Channels) / 2,
                               milliseconds(5000)))
          << id << format.SampleRate;
      source.Close();
    }
  }
}

TEST_F(AlsaSourceTest, ADeviceThatGoesAndComesBackIsRecordedOn) {
  AlsaSource source;
  ASSERT_EQ(source.Open("aradio", {44100, 2}, Sink), "");
  ASSERT_TRUE(Sink.WaitFor(44100, milliseconds(5000)));
  Server.Kill();
  std::this_thread::sleep_for(milliseconds(1500));
  const std::size_t quiet = Sink.Count();
  ASSERT_TRUE(Server.Start());
  ASSERT_TRUE(Sink.WaitFor(quiet + 8820, milliseconds(10000)));
  EXPECT_GT(Sink.Lost(), 44100);
  EXPECT_LT(Sink.Lost(), 44100 * 6);
  Server.Kill();
  std::this_thread::sleep_for(milliseconds(300));
  const auto start = std::chrono::steady_clock::now();
  source.Close();
  EXPECT_LT(std::chrono::steady_clock::now() - start, milliseconds(1500));
}

}  // namespace
}  // namespace kestrune::platform
