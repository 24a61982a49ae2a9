#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "config/update/Endpoints.h"
#include "config/update/UpdateCheck.h"
#include "support/FakeEnvironment.h"
#include "support/FakeWeb.h"
#include "support/MemoryFiles.h"
#include "support/SimulatedEventLoop.h"

namespace kestrune::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class UpdateCheckTest : public ::testing::Test {
 protected:
  UpdateCheckTest() {
    environment.Variables["KESTRUNE_UPDATE_ADDRESS"] = "https://h/NewVersion.txt";
    files.MakeFolders("/tmp");
  }
  void Check() { check.CheckNewVersion(address, result); }

  SimulatedEventLoop loop;
  FakeWeb web;
  MemoryFiles files;
  FakeEnvironment environment;
  base::RunState run;
  config::UpdateCheck check{web, files, environment, loop, run};
  std::string address = "left from before";
  std::int16_t result = 77;
};

TEST_F(UpdateCheckTest, TheRunningVersionAloneIsUpToDate) {
  web.Text = "003.000.029";
  Check();
  EXPECT_EQ(result, 0);
  EXPECT_EQ(address, "");
  EXPECT_THAT(web.Calls, ElementsAre("FetchText https://h/NewVersion.txt")) << "no need of the fall-back";
}

TEST_F(UpdateCheckTest, ANewerVersionComesWithAnAddressWithoutALineEnd) {
  web.Text = "003.000.030\nhttp://h/Setup.bin\n";
  Check();
  EXPECT_EQ(result, 1);
  EXPECT_EQ(address, "http://h/Setup.bin");
}

TEST_F(UpdateCheckTest, TheAddressOfAVersionThatIsNotNewerIsNotTold) {
  web.Text = "003.000.029\nhttp://h/Setup.bin\n";
  Check();
  EXPECT_EQ(result, 0);
  EXPECT_EQ(address, "");
}

TEST_F(UpdateCheckTest, AMalformedTextThatSortsBehindCountsAsNewerWithItsSecondLineAsAddress) {
  web.Text = "Not Found\nThe requested file is not here.";
  Check();
  EXPECT_EQ(result, 1);
  EXPECT_EQ(address, "The requested file is not here.");
}

TEST_F(UpdateCheckTest, AnEmptyReplyFromBothFetchesIsNotRetrieved) {
  Check();
  EXPECT_EQ(result, 2);
  EXPECT_EQ(address, "");
  EXPECT_THAT(web.Calls, ElementsAre("FetchText https://h/NewVersion.txt", "Connect h:80 10000"));
}

TEST_F(UpdateCheckTest, AnEmptyFirstReplyLeadsToTheFallBackWithoutEncryption) {
  web.Reachable = true;
  web.Reply = {"HTTP/1.0 200 OK\r\n\r\n003.000.031\r\nhttp://h/Setup.bin\r\n"};
  Check();
  EXPECT_EQ(result, 1);
  EXPECT_EQ(address, "http://h/Setup.bin");
  EXPECT_TRUE(web.Sent.starts_with("GET /newversion.txt HTTP/1.0\r\nHost: h\r\n")) << web.Sent;
}

TEST_F(UpdateCheckTest, BlanksAloneAreNotRetrieved) {
  web.Text = "   \r\n";
  Check();
  EXPECT_EQ(result, 2);
  EXPECT_THAT(web.Calls, ElementsAre("FetchText https://h/NewVersion.txt"))
      << "the first reply was not empty";
}

TEST_F(UpdateCheckTest, WithoutAServerNobodyIsAsked) {
  environment.Variables.erase("KESTRUNE_UPDATE_ADDRESS");
  if (check.HasServer()) GTEST_SKIP() << "this build has a server";
  Check();
  EXPECT_EQ(result, 2);
  EXPECT_THAT(web.Calls, IsEmpty());
}

TEST_F(UpdateCheckTest, TheEnvironmentGoesBeforeTheBuild) {
  environment.Variables["KESTRUNE_WEB_SITE"] = "https://site.invalid";
  EXPECT_EQ(config::EndpointsOf(environment).VersionFile, "https://h/NewVersion.txt");
  EXPECT_EQ(config::EndpointsOf(environment).WebSite, "https://site.invalid");
}

TEST_F(UpdateCheckTest, ACloseWithinTheFirstFetchLeavesTheSecondOut) {
  web.During = [this] { run.ShuttingDown = true; };
  Check();
  EXPECT_EQ(result, 2);
  EXPECT_THAT(web.Calls, ElementsAre("FetchText https://h/NewVersion.txt"));
}

TEST_F(UpdateCheckTest, ADownloadLiesInAPrivateFolderUnderTheAddresssLastName) {
  web.Bytes = std::string(
      "\x7F"
      "ELF\0\xFF",
      6);
  std::string localFile = "left from before";
  check.UpdateEXE("http://h/a/b/Setup.bin", localFile);
  EXPECT_EQ(localFile, "/tmp/private1/Setup.bin");
  EXPECT_EQ(files.Text(localFile), web.Bytes);
  EXPECT_THAT(web.Calls, ElementsAre("FetchBytes http://h/a/b/Setup.bin"));
  EXPECT_THAT(files.Calls, ElementsAre("CreatePrivateFolder /tmp", "CreateProgram /tmp/private1/Setup.bin"));
}

TEST_F(UpdateCheckTest, AFailedDownloadStillLeavesAnEmptyFile) {
  std::string localFile;
  check.UpdateEXE("http://h/Setup.bin", localFile);
  EXPECT_EQ(files.Text(localFile), "");
}

TEST_F(UpdateCheckTest, AnAddressWithoutANameLeavesNoFileButAPath) {
  for (const char* nameless : {"http://h/", ""}) {
    std::string localFile;
    check.UpdateEXE(nameless, localFile);
    EXPECT_FALSE(localFile.empty()) << nameless;
    EXPECT_FALSE(files.Exists(localFile)) << nameless;
  }
  EXPECT_THAT(files.AllFiles(), IsEmpty());
}

TEST_F(UpdateCheckTest, WithoutATemporaryFolderThereIsNoPath) {
  files.MakeUnwritable("/tmp");
  std::string localFile = "left from before";
  check.UpdateEXE("http://h/Setup.bin", localFile);
  EXPECT_EQ(localFile, "");
}

TEST_F(UpdateCheckTest, AFullDiskLeavesAPathAndNothingOnIt) {
  files.FailNext(FileOperation::CreateProgram);
  std::string localFile;
  check.UpdateEXE("http://h/Setup.bin", localFile);
  EXPECT_EQ(localFile, "/tmp/private1/Setup.bin");
  EXPECT_FALSE(files.Exists("/tmp/private1")) << "the folder goes too";
}

TEST_F(UpdateCheckTest, ACloseWithinTheDownloadLeavesNothingBehind) {
  web.Bytes = "half of it";
  web.During = [this] { run.ShuttingDown = true; };
  std::string localFile;
  check.UpdateEXE("http://h/Setup.bin", localFile);
  EXPECT_EQ(localFile, "");
  EXPECT_THAT(files.Calls, IsEmpty());
}

}  // namespace
}  // namespace kestrune::test
