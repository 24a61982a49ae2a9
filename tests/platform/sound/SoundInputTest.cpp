#include <chrono>
#include <cstdint>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "apps/SoundInput.h"
#include "platform/alsa/AlsaMixer.h"
#include "platform/alsa/AlsaSource.h"
#include "platform/pipe/PipeSource.h"
#include "platform/posix/TemporaryFolder.h"
#include "platform/pulse/PulseMixer.h"
#include "platform/pulse/PulseSource.h"
#include "support/PrivatePulse.h"
#include "support/ScopedVariables.h"

namespace kestrune::apps {
namespace {

template <typename Kind>
bool Is(const SoundInput& input) {
  return dynamic_cast<Kind*>(input.Source.get()) != nullptr;
}

TEST(SoundInput, TheTextNamesTheKind) {
  EXPECT_TRUE(Is<platform::PulseSource>(MakeSoundSource("pulse")));
  EXPECT_TRUE(Is<platform::AlsaSource>(MakeSoundSource("alsa")));
  const SoundInput pipe = MakeSoundSource("pipe:/some/where:else");
  ASSERT_TRUE(Is<platform::PipeSource>(pipe));
  EXPECT_EQ(pipe.Source->Devices().at(0).Id, "/some/where:else");
}

TEST(SoundInput, APipeMayHaveANameForPeople) {
  EXPECT_EQ(MakeSoundSource("pipe:/some/where").Source->Devices().at(0).Name, "/some/where");
  const SoundInput named = MakeSoundSource("pipe:/some/where", "Demonstration");
  EXPECT_EQ(named.Source->Devices().at(0).Name, "Demonstration");
  EXPECT_EQ(named.Source->Devices().at(0).Id, "/some/where");
}

TEST(SoundInput, ItsMixerGoesWithIt) {
  const auto mixerOf = [](const char* text) { return MakeSoundSource(text).Mixer; };
  EXPECT_NE(dynamic_cast<platform::PulseMixer*>(mixerOf("pulse").get()), nullptr);
  EXPECT_NE(dynamic_cast<platform::AlsaMixer*>(mixerOf("alsa").get()), nullptr);
  const auto none = mixerOf("pipe:/some/where");
  ASSERT_NE(none, nullptr);
  none->Open("/some/where");
  EXPECT_EQ(none->LineCount(), -1);
}

TEST(SoundInput, OnlyASoundServerLetsAnInputBeHeardTwice) {
  EXPECT_TRUE(MakeSoundSource("pulse").Listener->Shares());
  EXPECT_FALSE(MakeSoundSource("alsa").Listener->Shares());
  EXPECT_FALSE(MakeSoundSource("pipe:/some/where").Listener->Shares());
}

TEST(SoundInput, AListenerHearsTheSameInputsAsTheSource) {
  const test::TemporaryFolder folder;
  test::PutFile(folder / "sound", std::string(1 << 20, 'x'));
  const auto listener = MakeSoundSource("pipe:" + (folder / "sound")).Listener;
  ASSERT_TRUE(listener->Open(folder / "sound", {44100, 2}));
  std::vector<std::int16_t> heard;
  for (int tries = 0; tries < 100 && heard.empty(); ++tries) {
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    heard = listener->Take();
  }
  ASSERT_FALSE(heard.empty());
  EXPECT_EQ(heard.front(), 0x7878);
}

TEST(SoundInput, AnythingElseIsRefusedWithAReason) {
  for (const char* text : {"Pulse", "pipe", "pipe:", "jack", " "}) {
    const SoundInput input = MakeSoundSource(text);
    EXPECT_EQ(input.Source, nullptr) << text;
    EXPECT_NE(input.Error, "") << text;
  }
}

TEST(SoundInput, AnEmptyTextTakesTheSoundServerIfOneAnswers) {
  if (!test::PrivatePulse::Installed()) GTEST_SKIP() << "no PulseAudio";
  test::PrivatePulse server;
  ASSERT_TRUE(server.Start());
  const test::ScopedVariables variables(server.Environment());
  EXPECT_TRUE(Is<platform::PulseSource>(MakeSoundSource("")));
  server.Kill();
  EXPECT_TRUE(Is<platform::AlsaSource>(MakeSoundSource("")));
}

}  // namespace
}  // namespace kestrune::apps
