#include <cstdlib>

#include <gtest/gtest.h>

#include "../posix/TemporaryFolder.h"
#include "WebApplication.h"
#include "base/Words.h"
#include "config/update/UpdateCheck.h"
#include "platform/ExecWait.h"
#include "platform/posix/FileNames.h"
#include "platform/posix/PosixFiles.h"
#include "platform/posix/PosixProcesses.h"
#include "platform/qtweb/QtWeb.h"
#include "support/FakeEnvironment.h"
#include "support/LoopbackServer.h"

namespace kestrune::test {
namespace {

/// The road from the version file to an installer that has run, over real connections and files.
TEST(Install, AnInstallerIsFoundFetchedAndRun) {
  WebApplication();
  const TemporaryFolder folder;
  LoopbackServer files({{{{"HTTP/1.0 200 OK\r\n\r\n#!/bin/sh\necho \"$0\" > \"$RAN\"\n"}}}});
  LoopbackServer versions(
      {{{{"HTTP/1.0 200 OK\r\n\r\n003.000.030\r\n" + files.Address("/New Setup$(x).sh") + "\r\n"}}}});
  platform::QtEventLoop loop;
  platform::QtWeb web;
  platform::PosixFiles disk;
  platform::PosixProcesses processes(loop);
  FakeEnvironment environment;
  environment.Variables["temp"] = folder.Path();
  environment.Variables["KESTRUNE_UPDATE_ADDRESS"] = versions.Address("/NewVersion.txt");
  const base::RunState run;
  const config::UpdateCheck check(web, disk, environment, loop, run);

  std::string address;
  std::int16_t result = 77;
  check.CheckNewVersion(address, result);
  EXPECT_EQ(result, config::kNewerVersion);
  EXPECT_EQ(address, files.Address("/New Setup$(x).sh"));

  std::string localFile;
  check.UpdateEXE(address, localFile);
  EXPECT_TRUE(localFile.ends_with("/New Setup$(x).sh")) << localFile;
  EXPECT_EQ(FileMode(localFile), 0700U);
  EXPECT_EQ(FileMode(platform::FolderOf(localFile)), 0700U);

  ASSERT_EQ(::setenv("RAN", (folder / "ran").c_str(), 1), 0);
  std::int16_t waitResult = 77;
  EXPECT_GT(radio::ExecWait(processes, base::QuoteWord(localFile), false, 0, waitResult, false), 0);
  EXPECT_EQ(waitResult, radio::kWaitEnded);
  EXPECT_EQ(FileText(folder / "ran"), localFile + "\n");
  check.RemoveDownload(localFile);
  EXPECT_FALSE(disk.Exists(platform::FolderOf(localFile)));
}

}  // namespace
}  // namespace kestrune::test
