#include <QGuiApplication>
#include <QThread>
#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include "platform/posix/TemporaryFolder.h"
#include "platform/qtgui/DesktopShell.h"

namespace kestrune::test {
namespace {

/// A machine whose opener is a script that notes what it gets. Qt itself opens nothing without a desktop.
class DesktopShellTest : public ::testing::Test {
 protected:
  DesktopShellTest() {
    const std::string opener = folder_ / "xdg-open";
    PutFile(opener, "#!/bin/sh\nprintf '%s' \"$1\" > '" + (folder_ / "part") + "' && mv '" +
                        (folder_ / "part") + "' '" + (folder_ / "opened") + "'\n");
    std::filesystem::permissions(opener, std::filesystem::perms::owner_all);
  }

  std::string Opened() {
    for (int i = 0; i < 500 && !std::filesystem::exists(folder_ / "opened"); ++i) QThread::msleep(10);
    return FileText(folder_ / "opened");
  }

  TemporaryFolder folder_;
  VariableValue platform_{"QT_QPA_PLATFORM", "offscreen"};
  VariableValue path_{"PATH", folder_.Path() + ":/usr/bin:/bin"};
  int count_ = 1;
  char name_[5] = "test";
  char* words_[2] = {name_, nullptr};
  QGuiApplication application_{count_, words_};
  platform::DesktopShell shell_;
};

TEST_F(DesktopShellTest, AFileIsHandedToTheDesktopsOpener) {
  EXPECT_TRUE(shell_.Open("/tmp/KestruneLog.txt"));
  EXPECT_EQ(Opened(), "file:///tmp/KestruneLog.txt");
}

TEST_F(DesktopShellTest, SignsOfAPathAreNoSignsOfAnAddress) {
  EXPECT_TRUE(shell_.Open("/tmp/50% #1?.txt"));
  EXPECT_EQ(Opened(), "file:///tmp/50%25%20%231%3F.txt");
}

TEST_F(DesktopShellTest, AnAddressGoesAsItStands) {
  EXPECT_TRUE(shell_.Open("https://radio.example/new?version=3"));
  EXPECT_EQ(Opened(), "https://radio.example/new?version=3");
}

TEST_F(DesktopShellTest, WhatIsNeitherPathNorAddressIsNotOpened) {
  EXPECT_FALSE(shell_.Open(""));
  EXPECT_FALSE(shell_.Open("KestruneLog.txt"));
  EXPECT_FALSE(std::filesystem::exists(folder_ / "opened"));
}

TEST_F(DesktopShellTest, WithoutAnOpenerNothingIsStarted) {
  const VariableValue nowhere("PATH", folder_ / "nowhere");
  EXPECT_FALSE(shell_.Open("/tmp/KestruneLog.txt"));
}

}  // namespace
}  // namespace kestrune::test
