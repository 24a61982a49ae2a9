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

TEST_F(UpdateCheckTest, APageThatIsNoVersionFileIsNotRetrieved) {
  for (const char* text : {"Not Found\nThe requested file is not here.", "<html>", "3.0.30", "003.000.0300",
                           "003.000.03", "003 000 030", "00a.000.030", "v003.000.030"}) {
    web.Text = text;
    Check();
    EXPECT_EQ(result, 2) << text;
    EXPECT_EQ(address, "") << text;
  }
}

TEST_F(UpdateCheckTest, AnEmptyReplyFromBothFetchesIsNotRetrieved) {
  environment.Variables["KESTRUNE_UPDATE_ADDRESS"] = "http://h/NewVersion.txt";
  Check();
  EXPECT_EQ(result, 2);
  EXPECT_EQ(address, "");
  EXPECT_THAT(web.Calls, ElementsAre("FetchText http://h/NewVersion.txt", "Connect h:80 10000"));
}

TEST_F(UpdateCheckTest, AnEncryptedAddressIsNeverAskedInClear) {
  for (const char* secure : {"https://h/NewVersion.txt", "HTTPS://h/NewVersion.txt"}) {
    environment.Variables["KESTRUNE_UPDATE_ADDRESS"] = secure;
    web.Calls.clear();
    web.Reachable = true;
    web.Reply = {"HTTP/1.0 200 OK\r\n\r\n003.000.031\r\nhttp://h/Setup.bin\r\n"};
    Check();
    EXPECT_EQ(result, 2) << secure;
    EXPECT_THAT(web.Calls, ElementsAre(std::string("FetchText ") + secure));
  }
}

TEST_F(UpdateCheckTest, AnEmptyFirstReplyLeadsToTheFallBack) {
  environment.Variables["KESTRUNE_UPDATE_ADDRESS"] = "http://h/NewVersion.txt";
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
  check.UpdateEXE("https://h/a/b/Setup.bin", localFile);
  EXPECT_EQ(localFile, "/tmp/private1/Setup.bin");
  EXPECT_EQ(files.Text(localFile), web.Bytes);
  EXPECT_THAT(web.Calls, ElementsAre("FetchBytes https://h/a/b/Setup.bin"));
  EXPECT_THAT(files.Calls, ElementsAre("CreatePrivateFolder /tmp", "CreateProgram /tmp/private1/Setup.bin"));
}

TEST_F(UpdateCheckTest, AFailedDownloadLeavesNothing) {
  std::string localFile = "left from before";
  check.UpdateEXE("https://h/Setup.bin", localFile);
  EXPECT_EQ(localFile, "");
  EXPECT_THAT(files.Calls, IsEmpty());
}

TEST_F(UpdateCheckTest, AnInstallerOfAnEncryptedVersionFileDoesNotComeInClear) {
  web.Bytes = "program";
  std::string localFile = "left from before";
  check.UpdateEXE("http://h/Setup.bin", localFile);
  EXPECT_EQ(localFile, "");
  EXPECT_THAT(web.Calls, IsEmpty());
  environment.Variables["KESTRUNE_UPDATE_ADDRESS"] = "http://h/NewVersion.txt";
  check.UpdateEXE("http://h/Setup.bin", localFile);
  EXPECT_EQ(files.Text(localFile), "program") << "where nothing is encrypted, nothing is lost";
}

TEST_F(UpdateCheckTest, ADownloadIsRemovedWithItsFolder) {
  web.Bytes = "program";
  std::string localFile;
  check.UpdateEXE("https://h/Setup.bin", localFile);
  check.RemoveDownload(localFile);
  EXPECT_FALSE(files.Exists("/tmp/private1"));
}

TEST_F(UpdateCheckTest, AnAddressWithoutANameLeavesNoFileButAPath) {
  web.Bytes = "program";
  std::string localFile;
  check.UpdateEXE("https://h/", localFile);
  EXPECT_EQ(localFile, "/tmp/private1/");
  EXPECT_THAT(files.AllFiles(), IsEmpty());
}

TEST_F(UpdateCheckTest, WithoutATemporaryFolderThereIsNoPath) {
  files.MakeUnwritable("/tmp");
  web.Bytes = "program";
  std::string localFile = "left from before";
  check.UpdateEXE("https://h/Setup.bin", localFile);
  EXPECT_EQ(localFile, "");
}

TEST_F(UpdateCheckTest, AFullDiskLeavesAPathAndNothingOnIt) {
  files.FailNext(FileOperation::CreateProgram);
  web.Bytes = "program";
  std::string localFile;
  check.UpdateEXE("https://h/Setup.bin", localFile);
  EXPECT_EQ(localFile, "/tmp/private1/Setup.bin");
  EXPECT_FALSE(files.Exists("/tmp/private1")) << "the folder goes too";
}

TEST_F(UpdateCheckTest, ACloseWithinTheDownloadLeavesNothingBehind) {
  web.Bytes = "half of it";
  web.During = [this] { run.ShuttingDown = true; };
  std::string localFile;
  check.UpdateEXE("https://h/Setup.bin", localFile);
  EXPECT_EQ(localFile, "");
  EXPECT_THAT(files.Calls, IsEmpty());
}

}  // namespace
}  // namespace kestrune::test
