// People who talk pause; recorded speech shows that nobody is told of a silence then.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/UnitRig.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;
using Samples = std::vector<std::int16_t>;

/// Sentences of an audiobook, read by a volunteer, from the Debian package pocketsphinx-testdata.
constexpr const char* kSentences =
    "/usr/share/pocketsphinx/test/data/librivox/sense_and_sensibility_01_austen_64kb-";
constexpr std::size_t kSpeechRate = 16000;

/// The samples of a WAV file in mono; none if it is not there.
Samples ReadSpeech(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  const std::string bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  const std::size_t data = bytes.find("data");
  if (data == std::string::npos) return {};
  Samples samples;
  for (std::size_t at = data + 8; at + 1 < bytes.size(); at += 2) {
    samples.push_back(static_cast<std::int16_t>(static_cast<unsigned char>(bytes[at]) |
                                                static_cast<unsigned char>(bytes[at + 1]) << 8));
  }
  return samples;
}

std::vector<Samples> ReadSentences() {
  std::vector<Samples> sentences;
  for (const char* number : {"0870", "0880", "0890", "0920", "0930"}) {
    Samples sentence = ReadSpeech(std::string(kSentences) + number + ".wav");
    if (sentence.empty()) return {};
    sentences.push_back(std::move(sentence));
  }
  return sentences;
}

/// Minutes of talk: sentences in any order, with pauses of two to ten seconds. It ends with a sentence.
Samples Talk(const std::vector<Samples>& sentences, std::chrono::seconds length, std::mt19937& random) {
  std::uniform_int_distribution<std::size_t> any(0, sentences.size() - 1);
  std::uniform_int_distribution<std::size_t> pause(2 * kSpeechRate, 10 * kSpeechRate);
  Samples talk;
  while (talk.size() < static_cast<std::size_t>(length.count()) * kSpeechRate) {
    if (!talk.empty()) talk.resize(talk.size() + pause(random));
    const Samples& sentence = sentences[any(random)];
    talk.insert(talk.end(), sentence.begin(), sentence.end());
  }
  return talk;
}

/// How a talk reaches the input.
struct Road {
  const char* Name;
  double Gain;
  double NoiseDb;  ///< RMS of the hiss on each channel, below full scale
  bool LeftAlone;  ///< the cable of the right channel is broken
};

constexpr double kNoNoise = -200;
const Road kRoads[] = {
    {"digital silence in the pauses", 1, kNoNoise, false},
    {"a hissing input", 1, -70, false},
    {"a low level", 0.03, -80, false},
    {"one channel at a low level", 0.03, -75, true},
};

/// White noise, the same at each call, another one on each channel.
class Hiss {
 public:
  explicit Hiss(double db) : peak_(std::sqrt(3.0) * 32768 * std::pow(10, db / 20)) {}

  [[nodiscard]] double At(std::uint64_t frame, int channel) const {
    std::uint64_t bits = (frame * 2 + static_cast<std::uint64_t>(channel) + 1) * 0x9E3779B97F4A7C15U;
    bits = (bits ^ bits >> 31) * 0xBF58476D1CE4E5B9U;
    bits ^= bits >> 29;
    return peak_ * (static_cast<double>(bits >> 11) / static_cast<double>(std::uint64_t{1} << 52) - 1);
  }

 private:
  double peak_;
};

class SpeechPauses : public ::testing::Test {
 protected:
  void SetUp() override {
    sentences_ = ReadSentences();
    if (sentences_.empty()) GTEST_SKIP() << "pocketsphinx-testdata is not installed";
    const unsigned seed = std::random_device{}();
    std::cout << "seed " << seed << '\n';
    random_.seed(seed);
  }

  /// A unit that records, and hears the hiss alone.
  static void Record(UnitRig& rig, const Road& road) {
    rig.Sound.SetSignal([hiss = Hiss(road.NoiseDb)](std::uint64_t frame, int channel) {
      return static_cast<std::int16_t>(std::lround(hiss.At(frame, channel)));
    });
    rig.Set("FileFormat", "WAV");
    rig.Set("WAV_Frequency", "22050");
    rig.Set("WAV_Channels", "2");
    rig.StartIdle();
    ASSERT_EQ(rig.Sound.OpenFormat().Channels, 2);
    rig->cmdRecord();
  }

  /// Plays a talk to its end; true if the silence warning was there at any time.
  static bool Listen(UnitRig& rig, const Road& road, const Samples& talk) {
    const std::int32_t rate = rig.Sound.OpenFormat().SampleRate;
    const std::uint64_t start = SimulatedSoundSource::FrameAt(rig.Loop.SteadyNow(), rate);
    const double step = static_cast<double>(kSpeechRate) / rate;
    // The sound runs on to the end of the rig, and what it is made of with it.
    const auto played = std::make_shared<const Samples>(talk);
    rig.Sound.SetSignal([=, hiss = Hiss(road.NoiseDb)](std::uint64_t frame, int channel) {
      double sample = hiss.At(frame, channel);
      const double place = static_cast<double>(frame - start) * step;
      const auto at = static_cast<std::size_t>(place);
      if (at + 1 < played->size() && !(road.LeftAlone && channel == 1)) {
        const double part = place - static_cast<double>(at);
        sample += road.Gain * ((*played)[at] * (1 - part) + (*played)[at + 1] * part);
      }
      return static_cast<std::int16_t>(std::clamp(std::lround(sample), -32768L, 32767L));
    });
    bool silent = false;
    for (std::size_t second = 0; second < talk.size() / kSpeechRate; ++second) {
      rig.Run(1s);
      silent = silent || rig.Unit->State().Watch.Silent;
    }
    return silent;
  }

  std::vector<Samples> sentences_;
  std::mt19937 random_;
};

TEST_F(SpeechPauses, AreNoSilence) {
  for (const Road& road : kRoads) {
    SCOPED_TRACE(road.Name);
    UnitRig rig;
    Record(rig, road);
    const Samples talk = Talk(sentences_, 5min, random_);
    EXPECT_FALSE(Listen(rig, road, talk));
    EXPECT_FALSE(rig.Logged("No sound from the radio for 20 seconds"));
  }
}

TEST_F(SpeechPauses, DoNotHideTheSilenceThatFollowsThem) {
  for (const Road& road : kRoads) {
    SCOPED_TRACE(road.Name);
    UnitRig rig;
    Record(rig, road);
    const Samples talk = Talk(sentences_, 1min, random_);
    EXPECT_FALSE(Listen(rig, road, talk));
    rig.Run(18s);
    EXPECT_FALSE(rig.Unit->State().Watch.Silent);
    rig.Run(5s);
    EXPECT_TRUE(rig.Unit->State().Watch.Silent);
  }
}

TEST_F(SpeechPauses, HissJustBelow60DecibelsIsStillSilence) {
  const Road road{.Name = "loud hiss", .Gain = 1, .NoiseDb = -60.5, .LeftAlone = false};
  UnitRig rig;
  Record(rig, road);
  EXPECT_FALSE(Listen(rig, road, Talk(sentences_, 1min, random_)));
  rig.Run(23s);
  EXPECT_TRUE(rig.Unit->State().Watch.Silent);
}

}  // namespace
}  // namespace kestrune::test
