#include <atomic>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "platform/canberra/ThemeSounds.h"
#include "support/PrivatePulse.h"
#include "support/ScopedVariables.h"

namespace kestrune::platform {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using test::ChildProcess;
using test::PrivatePulse;
using test::ScopedVariables;

/// A sound server and a theme of the test's own, in which the alert is a tone of half a second.
class ThemeSoundsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!PrivatePulse::Installed()) GTEST_SKIP() << "no pulseaudio installed";
    ASSERT_TRUE(Server.Start());
    const fs::path theme = Server.Folder() / "data/sounds/freedesktop";
    fs::create_directories(theme / "stereo");
    std::ofstream(theme / "index.theme")
        << "[Sound Theme]\nName=Test\nDirectories=stereo\n\n[stereo]\nOutputProfile=stereo\n";
    ASSERT_EQ(ChildProcess({"sox", "-n", "-r", "44100", "-b", "16", "-c", "2",
                            theme / "stereo/dialog-information.wav", "synth", "0.5", "sine", "440"})
                  .Wait(10s),
              0);
    auto variables = Server.Environment();
    variables.emplace_back("XDG_DATA_HOME", (Server.Folder() / "data").string());
    variables.emplace_back("XDG_DATA_DIRS", "/nonexistent");
    variables.emplace_back("CANBERRA_DRIVER", "pulse");
    Variables = std::make_unique<ScopedVariables>(variables);
  }

  [[nodiscard]] fs::path Heard() const { return Server.Folder() / "heard.raw"; }
  [[nodiscard]] ChildProcess Listen() const {
    return ChildProcess({"parec", "-d", PrivatePulse::kMonitor, "--format=s16le", "--rate=44100",
                         "--channels=2", "--raw", Heard().string()},
                        Server.Environment());
  }
  /// How many samples were not silent.
  [[nodiscard]] std::size_t Loud() const {
    std::ifstream file(Heard(), std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(file)), {});
    std::size_t loud = 0;
    for (std::size_t i = 1; i < bytes.size(); i += 2)
      if (std::abs(static_cast<signed char>(bytes[i])) > 1) ++loud;
    return loud;
  }
  template <typename Condition>
  [[nodiscard]] static bool Soon(Condition condition) {
    for (int i = 0; i < 100 && !condition(); ++i) std::this_thread::sleep_for(50ms);
    return condition();
  }

  PrivatePulse Server;
  std::unique_ptr<ScopedVariables> Variables;
  std::atomic<int> Instead = 0;
};

TEST_F(ThemeSoundsTest, TheAlertOfTheThemeIsHeard) {
  const ChildProcess listener = Listen();
  ASSERT_TRUE(Soon([this] { return fs::exists(Heard()) && fs::file_size(Heard()) > 0; }));
  ThemeSounds sounds([this] { ++Instead; });
  EXPECT_EQ(Loud(), 0U);
  sounds.Play("SystemAsterisk");
  EXPECT_TRUE(Soon([this] { return Loud() > 10000; })) << Loud();
  EXPECT_EQ(Instead, 0);
}

TEST_F(ThemeSoundsTest, ASoundThatTheThemeDoesNotHaveIsReplaced) {
  ThemeSounds sounds([this] { ++Instead; });
  sounds.Play("SomethingElse");
  EXPECT_TRUE(Soon([this] { return Instead == 1; }));
}

TEST_F(ThemeSoundsTest, WithoutAServerASoundIsReplacedAndAfterItsReturnPlayed) {
  const ChildProcess early = Listen();
  Server.Kill();
  ThemeSounds sounds([this] { ++Instead; });
  sounds.Play("SystemAsterisk");
  ASSERT_TRUE(Soon([this] { return Instead == 1; }));
  fs::remove(Heard());
  ASSERT_TRUE(Server.Restart());
  const ChildProcess listener = Listen();
  ASSERT_TRUE(Soon([this] { return fs::exists(Heard()) && fs::file_size(Heard()) > 0; }));
  sounds.Play("SystemAsterisk");
  EXPECT_TRUE(Soon([this] { return Loud() > 10000; })) << Loud();
}

TEST_F(ThemeSoundsTest, AServerThatDoesNotAnswerHoldsNobodyUp) {
  Server.Halt();
  const auto start = std::chrono::steady_clock::now();
  {
    ThemeSounds sounds([this] { ++Instead; });
    for (int i = 0; i < 3; ++i) sounds.Play("SystemAsterisk");
    std::this_thread::sleep_for(100ms);  // the thread waits for the server now
    sounds.Play("SystemAsterisk");
  }
  EXPECT_LT(std::chrono::steady_clock::now() - start, 2s);
  Server.Continue();
  std::this_thread::sleep_for(200ms);
  EXPECT_EQ(Instead, 0) << "the object is gone";
}

TEST(ThemeSounds, NamesFollowTheDesktopsSpecification) {
  EXPECT_STREQ(ThemeSoundOf("SystemAsterisk"), "dialog-information");
  EXPECT_STREQ(ThemeSoundOf("SystemHand"), "bell-window-system");
}

}  // namespace
}  // namespace kestrune::platform
