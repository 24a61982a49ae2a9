#include <chrono>
#include <csignal>
#include <future>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/posix/TemporaryFolder.h"
#include "real/LineUps.h"
#include "real/Receiver.h"
#include "real/Unit.h"
#include "real/Waiting.h"

namespace kestrune::test {
namespace {

using Json = Unit::Json;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

/// Ten stations, and two more with songs that change.
std::vector<LineUpStation> TwelveStations() {
  constexpr double kSeconds = 4;
  std::vector<LineUpStation> stations = TenStations(kSeconds);
  for (const int number : {47, 48}) {
    const std::string text = std::to_string(number);
    stations.push_back({number,
                        "Station " + text,
                        "Jazz",
                        {{"Lanterns", "Pier " + text, kSeconds}, {"Cellar", "Door " + text, kSeconds}}});
  }
  return stations;
}

struct Answer {
  Outcome What;
  std::chrono::steady_clock::time_point At;
};

TEST(MidTuning, CommandsAreCarriedOutInOrderAndRadioStatusAndFilesAgreeOnTheChannel) {
  const TemporaryFolder folder;
  // Once it falls silent, it obeys for five seconds without an answer: each tuning waits as long as it may.
  Receiver radio(folder / "radio",
                 Receiver::Setup{TwelveStations(), "none", "tones", {"--misbehave", "silence@30"}});
  Unit unit(
      folder / "profile",
      Unit::Setup{"pipe:" + QuietFile(folder.Path()),
                  radio.Link(),
                  {{"Channel", "8"}, {"MinSongLength", "2"}, {"FileFormat", "WAV"}, {"Integrel", "True"}}});
  unit.Start();
  ASSERT_TRUE(unit.WaitUntilIdle()) << unit.Program().Errors();
  const auto silent = [&radio] { return !radio.Events("misbehaviour").empty(); };
  ASSERT_FALSE(silent()) << "this machine is too slow for a start of half a minute";
  ASSERT_TRUE(WaitUntil(kPatience, silent));

  // The program finds them all at its door at once.
  unit.Program().Signal(SIGSTOP);
  std::vector<std::future<Answer>> commands;
  for (const std::vector<std::string>& words : std::vector<std::vector<std::string>>{
           {"tune", "47"}, {"tune", "48"}, {"record"}, {"stop"}, {"status"}}) {
    commands.push_back(std::async(std::launch::async, [&unit, words] {
      Outcome outcome = unit.Ctl(words);
      return Answer{std::move(outcome), std::chrono::steady_clock::now()};
    }));
    std::this_thread::sleep_for(150ms);
  }
  unit.Program().Signal(SIGCONT);
  std::vector<Answer> answers;
  for (std::future<Answer>& command : commands) {
    answers.push_back(command.get());
    EXPECT_EQ(answers.back().What.Exit, 0) << answers.back().What.Errors;
  }
  // Neither tuning runs inside the other's wait, and the recording waits for both.
  EXPECT_GT(answers[1].At - answers[0].At, 1s);
  EXPECT_GT(answers[2].At - answers[0].At, 1s);
  std::vector<int> tuned;
  for (const Json& event : radio.Events("tuned")) tuned.push_back(event["channel"]);
  ASSERT_GE(tuned.size(), 2U);
  EXPECT_THAT(std::vector<int>(tuned.end() - 2, tuned.end()), ElementsAre(47, 48));
  const Json status = unit.Status();
  EXPECT_EQ(status["channelNumber"], 48);
  EXPECT_EQ(status["recordRequested"], false) << "the stop came after the record";
  EXPECT_THAT(unit.Recordings(), IsEmpty());

  // Once it answers again, what is recorded is what is tuned.
  EXPECT_TRUE(unit.WaitForStatus([](const Json& now) { return now["station"] == "Station 48"; }));
  EXPECT_TRUE(unit.Record(2));
  EXPECT_EQ(unit.Status()["channelNumber"], 48);
  EXPECT_EQ(radio.Events("tuned").back()["channel"], 48);
  EXPECT_EQ(unit.Quit(), 0);
  EXPECT_THAT(unit.Recordings(), Not(IsEmpty()));
  EXPECT_THAT(unit.Recordings(), Each(HasSubstr("/Jazz/48 - Station 48/")));
}

}  // namespace
}  // namespace kestrune::test
