#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/posix/TemporaryFolder.h"
#include "platform/posix/XdgAutostart.h"

namespace kestrune::test {
namespace {

using platform::AutostartName;
using platform::XdgAutostart;
using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Ne;
using ::testing::Not;

class XdgAutostartTest : public ::testing::Test {
 protected:
  XdgAutostartTest() {
    PutFile(program_, "#!/bin/sh\n");
    std::filesystem::permissions(program_, std::filesystem::perms::owner_all);
  }

  [[nodiscard]] XdgAutostart Made(std::vector<std::string> words = {}) const {
    return XdgAutostart(
        {.Configuration = config_, .Name = "kestrune", .Program = program_, .Words = std::move(words)});
  }
  void Put(const std::string& text) const {
    std::filesystem::create_directories(config_ + "/autostart");
    PutFile(Made().File(), text);
  }

  const TemporaryFolder folder_;
  const std::string config_ = folder_ / "config";
  const std::string program_ = folder_ / "kestrune";
};

TEST_F(XdgAutostartTest, WithoutAFileItDoesNotStart) {
  const platform::AutostartState state = Made().Read();
  EXPECT_FALSE(state.Starts);
  EXPECT_FALSE(state.Foreign);
  EXPECT_FALSE(std::filesystem::exists(config_)) << "looking makes nothing";
}

TEST_F(XdgAutostartTest, EnabledItStartsUntilItIsDisabled) {
  XdgAutostart autostart = Made({"--profile", "/data/radio"});
  ASSERT_TRUE(autostart.Enable());
  EXPECT_EQ(autostart.File(), config_ + "/autostart/kestrune.desktop");
  EXPECT_TRUE(autostart.Read().Starts);
  EXPECT_FALSE(autostart.Read().Foreign);
  EXPECT_EQ(FileMode(autostart.File()), 0600U);
  EXPECT_THAT(FileText(autostart.File()),
              AllOf(HasSubstr("Exec=\"" + program_ + "\" \"--profile\" \"/data/radio\"\n"),
                    HasSubstr("TryExec=" + program_ + "\n")));
  ASSERT_TRUE(autostart.Disable());
  EXPECT_FALSE(std::filesystem::exists(autostart.File()));
  EXPECT_FALSE(autostart.Read().Starts);
  EXPECT_TRUE(autostart.Disable()) << "nothing is there any more";
}

TEST_F(XdgAutostartTest, TheDesktopsValidatorTakesTheEntry) {
  if (std::system("desktop-file-validate --help > /dev/null 2>&1") != 0) GTEST_SKIP();
  XdgAutostart autostart = Made({"--profile", "/data/a \"b\" $c `d` \\e 100% %f", "/multi", "2"});
  ASSERT_TRUE(autostart.Enable());
  EXPECT_EQ(std::system(("desktop-file-validate " + autostart.File()).c_str()), 0);
}

TEST_F(XdgAutostartTest, TheDesktopsOwnLauncherPassesEveryWordUnchanged) {
  if (std::system("gio help launch > /dev/null 2>&1") != 0) GTEST_SKIP();
  const std::string odd = folder_ / "a \"b\" $c `d` \\e \xC3\xA9;'#";
  std::filesystem::create_directories(odd);
  const std::string program = odd + "/kestrune";
  const std::string heard = folder_ / "heard";
  PutFile(program, fmt::format("#!/bin/sh\nfor word; do printf '%s\\n' \"$word\" >> {}; done\n", heard));
  std::filesystem::permissions(program, std::filesystem::perms::owner_all);
  const std::vector<std::string> words{"--profile", odd, "", " x ", "\\\\", "100% %f %%", "/multi", "2"};
  XdgAutostart autostart({.Configuration = config_, .Name = "kestrune", .Program = program, .Words = words});
  ASSERT_TRUE(autostart.Enable());
  EXPECT_TRUE(autostart.Read().Starts);
  ASSERT_EQ(std::system(("gio launch " + autostart.File()).c_str()), 0);
  std::string expected;
  for (const std::string& word : words) expected += word + '\n';
  for (int tries = 0; tries < 100 && FileText(heard) != expected; ++tries) ::usleep(50000);
  EXPECT_EQ(FileText(heard), expected);
}

TEST_F(XdgAutostartTest, AnEntryThatTheDesktopHasSwitchedOffStartsNothing) {
  XdgAutostart autostart = Made();
  for (const char* line : {"Hidden=true\n", "X-GNOME-Autostart-enabled=false\n", "Hidden = true \r\n"}) {
    ASSERT_TRUE(autostart.Enable());
    PutFile(autostart.File(), FileText(autostart.File()) + line);
    EXPECT_FALSE(autostart.Read().Starts) << line;
    EXPECT_FALSE(autostart.Read().Foreign);
  }
  for (const char* line : {"Hidden=false\n", "X-GNOME-Autostart-enabled=true\n", "[Other]\nHidden=true\n",
                           "#Hidden=true\n", "Hidden[de]=true\n"}) {
    ASSERT_TRUE(autostart.Enable());
    PutFile(autostart.File(), FileText(autostart.File()) + line);
    EXPECT_TRUE(autostart.Read().Starts) << line;
  }
}

TEST_F(XdgAutostartTest, AnEntryWhoseProgramIsGoneStartsNothing) {
  XdgAutostart autostart = Made();
  ASSERT_TRUE(autostart.Enable());
  std::filesystem::remove(program_);
  EXPECT_FALSE(autostart.Read().Starts);
}

TEST_F(XdgAutostartTest, WhatSomebodyElseHasMadeIsToldApart) {
  Put("[Desktop Entry]\nType=Application\nName=Mine\nExec=kestrune /debug\n");
  EXPECT_TRUE(Made().Read().Foreign);
  EXPECT_TRUE(Made().Read().Starts);
  Put("");
  EXPECT_TRUE(Made().Read().Foreign);
  EXPECT_FALSE(Made().Read().Starts);
  std::filesystem::remove(Made().File());
  std::filesystem::create_directory(Made().File());
  EXPECT_TRUE(Made().Read().Foreign) << "not even a file";
  EXPECT_FALSE(Made().Enable());
  EXPECT_FALSE(Made().Disable());
}

TEST_F(XdgAutostartTest, AFailureHasACause) {
  PutFile(config_, "no folder");
  EXPECT_THAT(Made().Enable().Cause(), HasSubstr(config_ + "/autostart"));
  std::filesystem::remove(config_);
  const OrdinaryUser user;
  EXPECT_FALSE(
      XdgAutostart({.Configuration = "/proc/none", .Name = "kestrune", .Program = program_, .Words = {}})
          .Enable());
}

TEST_F(XdgAutostartTest, UnitsAndProfilesHaveEntriesOfTheirOwn) {
  EXPECT_EQ(AutostartName("", ""), "kestrune");
  EXPECT_EQ(AutostartName("2", ""), "kestrune-2");
  EXPECT_THAT(AutostartName("", "/a"), AllOf(Ne(AutostartName("", "/b")), Ne("kestrune")));
  EXPECT_EQ(AutostartName("2", "/a").substr(0, 11), "kestrune-2-");
  EXPECT_THAT(AutostartName("\xC3\xA9", ""), Not(HasSubstr("\xC3")));
  EXPECT_THAT(AutostartName("*", ""), Not(HasSubstr("*")));
}

}  // namespace
}  // namespace kestrune::test
