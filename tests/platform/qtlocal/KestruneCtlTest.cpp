// The real client program against a socket with a pretended unit behind it.

#include <QProcess>
#include <QProcessEnvironment>
#include <QStringList>
#include <QTimer>
#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Answering.h"
#include "control/ControlServer.h"
#include "platform/local/ControlSocketPath.h"
#include "platform/posix/RuntimeFolder.h"
#include "platform/posix/TemporaryFolder.h"
#include "platform/qtlocal/LocalControlSocket.h"
#include "support/FakeControlTarget.h"
#include "support/Pump.h"

namespace kestrune::platform {
namespace {

using test::Answering;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

struct Ended {
  int Status = -1;
  std::string Out;
  std::string Err;
};

class KestruneCtlTest : public ::testing::Test {
 protected:
  KestruneCtlTest() {
    test::Application();
    std::filesystem::create_directories(folder_ / "run");
    std::filesystem::create_directories(folder_ / "session/kestrune");
  }

  std::unique_ptr<LocalControlSocket> Serve(LocalControlSocket::Answer answer, const std::string& unit = "") {
    auto server = std::make_unique<LocalControlSocket>(
        ControlSocketPath(RuntimeFolderPath(folder_.Path()), unit), std::move(answer));
    EXPECT_EQ(server->Status(), LocalControlSocket::State::Listening) << server->Reason();
    return server;
  }
  std::unique_ptr<LocalControlSocket> Serve() {
    return Serve([this](std::string_view line, const LocalControlSocket::Reply& reply) {
      control::Dispatch(target_, line, reply);
    });
  }

  /// Runs the program to its end while the socket is served.
  Ended RunPlain(const std::vector<std::string>& words) const {
    QStringList arguments;
    for (const std::string& word : words) arguments << QString::fromStdString(word);
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("XDG_RUNTIME_DIR", QString::fromStdString(folder_.Path() + "/session"));
    process.setProcessEnvironment(environment);
    process.start(KESTRUNE_CTL, arguments);
    EXPECT_TRUE(test::PumpUntil([&] { return process.state() == QProcess::NotRunning; }));
    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
    return {process.exitCode(), process.readAllStandardOutput().toStdString(),
            process.readAllStandardError().toStdString()};
  }
  Ended Run(std::vector<std::string> words) const {
    words.insert(words.begin(), {"--profile", folder_.Path()});
    return RunPlain(words);
  }

  test::TemporaryFolder folder_;
  test::FakeControlTarget target_;
};

TEST_F(KestruneCtlTest, EachCommandReachesTheUnit) {
  const auto server = Serve();
  for (const std::vector<std::string>& words :
       std::vector<std::vector<std::string>>{{"record"},
                                             {"stop"},
                                             {"tune", "44"},
                                             {"mute", "on"},
                                             {"mute", "off"},
                                             {"set", "AGCLowLevel", "-10"},
                                             {"schedule", "--at=8:00 PM", "set", "3", "--kill", "on"},
                                             {"schedule", "clear", "3"},
                                             {"lists", "add", "kill-song", "--", "--odd"},
                                             {"quit"}}) {
    const Ended ended = Run(words);
    EXPECT_EQ(ended.Status, 0) << words.front();
    EXPECT_EQ(ended.Out, "");
    EXPECT_EQ(ended.Err, "");
  }
  EXPECT_THAT(target_.Calls,
              ElementsAre("Record", "Stop", "Tune 44", "Mute true", "Mute false", "Set AGCLowLevel=-10",
                          "SetSchedule 3", "ClearSchedule 3", "AddToList 3 --odd", "Quit"));
  EXPECT_EQ(target_.Change.At, 20 * 60);
  EXPECT_EQ(target_.Change.Kill, true);
}

TEST_F(KestruneCtlTest, StatusForPeopleIsATable) {
  target_.NextStatus.Version = "3.0.29";
  target_.NextStatus.Artist = "Beyonc\xC3\xA9";
  const auto server = Serve();
  const Ended ended = Run({"status"});
  EXPECT_EQ(ended.Status, 0);
  EXPECT_THAT(ended.Out, HasSubstr("Program    Kestrune 3.0.29\n"));
  EXPECT_THAT(ended.Out, HasSubstr("Playing    Beyonc\xC3\xA9\n"));
}

TEST_F(KestruneCtlTest, StatusForMachinesIsOneLineOfJson) {
  target_.NextStatus.Version = "3.0.29";
  const auto server = Serve();
  const Ended ended = Run({"status", "--json"});
  EXPECT_EQ(ended.Status, 0);
  EXPECT_EQ(ended.Out,
            R"({"unit":"","version":"3.0.29","loading":false,"port":0,"radioID":"",)"
            R"("radioLost":"","radioDoubt":"","channelNumber":0,)"
            R"("station":"","genre":"","artist":"","song":"","recording":"","recordRequested":false,)"
            R"("waitingForNextSong":false,"captureLengthMs":0,"keep":false,"warning":"","captureFailure":"",)"
            R"("recordedCount":0,"tooShortCount":0,)"
            R"("tooLongCount":0,"restrictedCount":0,"channelsLoading":false,"channelCount":0,)"
            R"("activeSchedule":0,"fileFormat":"","formatDescription":"","fileDir":"","inputDevice":"",)"
            R"("satellite1":0,"satellite2":0,"terrestrial":0,"samplesCaptured":0,"samplesLost":0})"
            "\n");
}

TEST_F(KestruneCtlTest, ChannelsLogAndGetForPeopleAndMachines) {
  target_.NextChannels = {{8, "80s on 8", "Decades", "a-ha", "Take On Me"}};
  target_.Log = {"one", "two"};
  target_.NextSetting = {true, "", "MP3"};
  const auto server = Serve();
  EXPECT_EQ(Run({"channels"}).Out,
            "Channel  Station   Genre    Artist  Song\n"
            "      8  80s on 8  Decades  a-ha    Take On Me\n");
  EXPECT_EQ(Run({"--json", "channels"}).Out,
            "[{\"number\":8,\"station\":\"80s on 8\",\"genre\":\"Decades\",\"artist\":\"a-ha\","
            "\"song\":\"Take On Me\"}]\n");
  EXPECT_EQ(Run({"log", "2"}).Out, "one\ntwo\n");
  EXPECT_EQ(Run({"log", "--json"}).Out, "[\"one\",\"two\"]\n");
  EXPECT_EQ(Run({"get", "FileFormat"}).Out, "MP3\n");
  EXPECT_EQ(Run({"get", "FileFormat", "--json"}).Out, "\"MP3\"\n");
  EXPECT_EQ(Run({"stop", "--json"}).Out, "null\n");
}

TEST_F(KestruneCtlTest, AFullLogComesWhole) {
  for (int i = 0; i < 5000; ++i) target_.Log.push_back(std::to_string(i) + std::string(200, 'x'));
  const auto server = Serve();
  const Ended ended = Run({"log", "5000"});
  EXPECT_EQ(ended.Status, 0);
  EXPECT_EQ(std::count(ended.Out.begin(), ended.Out.end(), '\n'), 5000);
}

TEST_F(KestruneCtlTest, ARefusalIsExitOneWithTheReason) {
  target_.NextResult = base::Result::Failed("no radio\x1B[2J");
  const auto server = Serve();
  const Ended ended = Run({"tune", "44"});
  EXPECT_EQ(ended.Status, 1);
  EXPECT_EQ(ended.Out, "");
  EXPECT_EQ(ended.Err, "kestrune-ctl: no radio\xEF\xBF\xBD[2J\n");
}

TEST_F(KestruneCtlTest, WrongUseIsExitTwoAndReachesNoUnit) {
  const auto server = Serve();
  struct Wrong {
    std::vector<std::string> Words;
    const char* Says;
  };
  const Wrong kWrong[] = {
      {{}, "no command given"},
      {{"dance"}, "unknown command \"dance\"; allowed: status, channels"},
      {{"schedule", "run"}, "expected nothing or one of set, enable, disable, clear"},
      {{"schedule", "set", "1"}, "schedule set: no option is given"},
      {{"schedule", "set", "1", "--at"}, "--at needs a value: --at TIME"},
      {{"schedule", "enable", "1", "--at", "20:00"},
       "schedule enable: too many arguments, \"--at\" is not expected"},
      {{"lists", "add", "grab", "Moon"}, "expected one of grab-artist"},
      {{"status", "--at", "20:00"}, "status: too many arguments, \"--at\" is not expected"},
      {{"tune"}, "tune: N is missing"},
      {{"tune", "256"}, "expected a channel number from 1 to 255"},
      {{"mute", "maybe"}, "expected on or off"},
      {{"log", "0"}, "from 1 to 5000"},
      {{"status", "now"}, "too many arguments"},
      {{"set", "K", "a\nb"}, "argument 2 holds a control character"},
      {{"set", "K", std::string(70'000, 'x')}, "the request is longer than 65536 bytes"},
      {{"--nope", "status"}, "unknown option \"--nope\""},
      {{"--json=1", "status"}, "--json takes no value"},
      {{"status", "--unit"}, "--unit needs a value"},
      {{"status", "--unit", "12"}, "--unit takes one character"},
      {{"status", "--unit", ""}, "--unit takes one character"},
      {{"status", "--profile", ""}, "--profile takes a folder"},
  };
  for (const Wrong& wrong : kWrong) {
    const Ended ended = Run(wrong.Words);
    EXPECT_EQ(ended.Status, 2) << wrong.Says;
    EXPECT_EQ(ended.Out, "");
    EXPECT_THAT(ended.Err, HasSubstr(wrong.Says));
    EXPECT_THAT(ended.Err, HasSubstr("try kestrune-ctl --help\n"));
  }
  EXPECT_THAT(target_.Calls, IsEmpty());
}

TEST_F(KestruneCtlTest, BehindADoubleDashAWordIsNoOption) {
  const auto server = Serve();
  EXPECT_EQ(Run({"set", "FilenameFormat", "--", "--json"}).Status, 0);
  EXPECT_THAT(target_.Calls, ElementsAre("Set FilenameFormat=--json"));
}

TEST_F(KestruneCtlTest, NoUnitIsExitThree) {
  const Ended none = Run({"status"});
  EXPECT_EQ(none.Status, 3);
  EXPECT_EQ(none.Err, "kestrune-ctl: no unit is running\n");

  const auto server = Serve();
  const Ended other = Run({"--unit", "2", "status"});
  EXPECT_EQ(other.Status, 3);
  EXPECT_EQ(other.Err, "kestrune-ctl: no unit 2 is running\n");
}

TEST_F(KestruneCtlTest, EachUnitAnswersForItself) {
  const auto single =
      Serve(Answering([](std::string_view) { return R"({"exit":0,"reason":"","result":"single"})"; }));
  const auto second =
      Serve(Answering([](std::string_view) { return R"({"exit":0,"reason":"","result":"second"})"; }), "2");
  EXPECT_EQ(Run({"get", "K"}).Out, "single\n");
  EXPECT_EQ(Run({"--unit", "2", "get", "K"}).Out, "second\n");
  EXPECT_EQ(Run({"--unit=2", "get", "K"}).Out, "second\n");
}

TEST_F(KestruneCtlTest, WithoutAProfileTheSessionsFolderCounts) {
  const LocalControlSocket server(folder_.Path() + "/session/kestrune/kestrune.sock",
                                  Answering([](std::string_view) {
                                    return std::string(R"({"exit":0,"reason":"","result":"session"})");
                                  }));
  EXPECT_EQ(RunPlain({"get", "K"}).Out, "session\n");
  EXPECT_EQ(Run({"get", "K"}).Status, 3);
}

TEST_F(KestruneCtlTest, AnAnswerThatMakesNoSenseIsRefused) {
  std::string answer;
  const auto server = Serve(Answering([&](std::string_view) { return answer; }));
  for (const char* nonsense : {"", "x", "{}", R"({"exit":7,"reason":"","result":null})"}) {
    answer = nonsense;
    const Ended ended = Run({"status"});
    EXPECT_EQ(ended.Status, 1) << nonsense;
    EXPECT_EQ(ended.Err, "kestrune-ctl: the unit's answer makes no sense\n");
  }
  answer = R"({"exit":0,"reason":"","result":{"unit":"2"}})";
  const Ended ended = Run({"status"});
  EXPECT_EQ(ended.Status, 1);
  EXPECT_THAT(ended.Err, HasSubstr("try --json"));
  EXPECT_EQ(Run({"status", "--json"}).Out, "{\"unit\":\"2\"}\n");
}

TEST_F(KestruneCtlTest, TheUnitsOwnWordOnWrongUseCounts) {
  const auto server = Serve(
      Answering([](std::string_view) { return R"({"exit":2,"reason":"unknown here","result":null})"; }));
  const Ended ended = Run({"quit"});
  EXPECT_EQ(ended.Status, 2);
  EXPECT_EQ(ended.Err, "kestrune-ctl: unknown here\n");
}

TEST_F(KestruneCtlTest, WaitLetsAUnitThatIsStartingFinishFirst) {
  target_.NextStatus.Loading = true;
  const auto server = Serve();
  QTimer::singleShot(700, qApp, [this] { target_.NextStatus.Loading = false; });
  const Ended ended = Run({"--wait", "20", "record"});
  EXPECT_EQ(ended.Status, 0) << ended.Err;
  EXPECT_GE(std::count(target_.Calls.begin(), target_.Calls.end(), "Status"), 2);
  EXPECT_EQ(target_.Calls.back(), "Record");
  EXPECT_FALSE(target_.NextStatus.Loading);
}

TEST_F(KestruneCtlTest, WaitAlsoWaitsForAUnitThatIsNotThereYet) {
  std::unique_ptr<LocalControlSocket> server;
  QTimer::singleShot(700, qApp, [&] { server = Serve(); });
  const Ended ended = Run({"--wait=20", "record"});
  EXPECT_EQ(ended.Status, 0) << ended.Err;
  EXPECT_THAT(target_.Calls, ElementsAre("Status", "Record"));
}

TEST_F(KestruneCtlTest, WaitHasAnEnd) {
  const Ended absent = Run({"--wait", "1", "record"});
  EXPECT_EQ(absent.Status, 3);
  EXPECT_EQ(absent.Err, "kestrune-ctl: no unit is running\n");
  target_.NextStatus.Loading = true;
  const auto server = Serve();
  const Ended starting = Run({"--wait", "1", "record"});
  EXPECT_EQ(starting.Status, 1);
  EXPECT_EQ(starting.Err, "kestrune-ctl: the unit is still starting\n");
  EXPECT_THAT(target_.Calls, ::testing::Each("Status"));
}

TEST_F(KestruneCtlTest, WaitTakesWholeSeconds) {
  const auto server = Serve();
  for (const char* wrong : {"0", "-1", "1.5", "x", "", "86401", "99999999999"}) {
    const Ended ended = Run({"--wait", wrong, "record"});
    EXPECT_EQ(ended.Status, 2) << wrong;
    EXPECT_THAT(ended.Err, HasSubstr("--wait takes a whole number of seconds from 1 to 86400"));
  }
  EXPECT_THAT(target_.Calls, IsEmpty());
}

TEST_F(KestruneCtlTest, AWishIsReportedWhenItHasBeenCarriedOut) {
  target_.KeepWishes = true;
  const auto server = Serve();
  QTimer::singleShot(500, qApp, [this] {
    ASSERT_EQ(target_.Kept.size(), 1U);
    target_.Kept.front()(base::Result::Failed("too late"));
  });
  const Ended ended = Run({"stop"});
  EXPECT_EQ(ended.Status, 1);
  EXPECT_EQ(ended.Err, "kestrune-ctl: too late\n");
}

TEST_F(KestruneCtlTest, HelpAndVersionNeedNoUnit) {
  const Ended help = RunPlain({"--help"});
  EXPECT_EQ(help.Status, 0);
  for (const char* part : {"status", "channels", "record", "stop", "tune N", "mute on|off", "log [N]",
                           "get KEY", "set KEY VALUE", "quit", "--unit U", "--profile DIR", "--wait SECONDS",
                           "--json", "exit status: 0 done"}) {
    EXPECT_THAT(help.Out, HasSubstr(part));
  }
  const Ended version = RunPlain({"--version"});
  EXPECT_EQ(version.Status, 0);
  EXPECT_EQ(version.Out, "kestrune-ctl 3.0.29\n");
}

}  // namespace
}  // namespace kestrune::platform
