#include <chrono>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "recorder/Door.h"
#include "support/SimulatedEventLoop.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;
using base::Result;
using recorder::Door;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class DoorTest : public ::testing::Test {
 protected:
  /// A wish that notes its name, and then that it was answered.
  void Ask(const std::string& name, const Result& result = Result::Done()) {
    door.Ask(
        [this, name, result] {
          happened.push_back(name);
          return result;
        },
        [this, name](const Result& answer) {
          happened.push_back(name + (answer.Ok() ? " done" : " refused: " + answer.Cause()));
        });
  }

  SimulatedEventLoop loop;
  std::vector<std::string> happened;
  Door door{loop};
};

TEST_F(DoorTest, AWishIsCarriedOutFromTheLoopAndThenAnswered) {
  Ask("record");
  EXPECT_THAT(happened, IsEmpty()) << "not within the call";
  loop.Run(10ms);
  EXPECT_THAT(happened, ElementsAre("record", "record done"));
}

TEST_F(DoorTest, WishesKeepTheirOrder) {
  Ask("record");
  Ask("stop");
  Ask("close");
  loop.Run(10ms);
  EXPECT_THAT(happened, ElementsAre("record", "record done", "stop", "stop done", "close", "close done"));
}

TEST_F(DoorTest, AWishTellsWhyItWasRefused) {
  Ask("tune", Result::Failed("recording is under way"));
  loop.Run(10ms);
  EXPECT_THAT(happened, ElementsAre("tune", "tune refused: recording is under way"));
}

TEST_F(DoorTest, NoWishGetsIntoAPump) {
  const auto tick = loop.MakeTimer(5ms, [this] {
    Ask("stop");
    for (int i = 0; i < 10; ++i) {
      loop.Sleep(10ms);
      loop.PumpEvents();
    }
    happened.emplace_back("tick over");
  });
  tick->SetEnabled(true);
  ASSERT_TRUE(loop.RunUntil([this] { return happened.size() >= 3; }, 1s));
  EXPECT_THAT(happened, ElementsAre("tick over", "stop", "stop done"));
}

TEST_F(DoorTest, NoWishGetsIntoAPumpWithinAPump) {
  loop.Post([this] {
    loop.Post([this] {
      Ask("stop");
      loop.Sleep(10ms);
      loop.PumpEvents();
    });
    loop.PumpEvents();
    loop.Sleep(10ms);
    loop.PumpEvents();
    happened.emplace_back("outer over");
  });
  loop.Run(1s);
  EXPECT_THAT(happened, ElementsAre("outer over", "stop", "stop done"));
}

TEST_F(DoorTest, AWishThatWaitsLetsNoOtherIn) {
  door.Ask([this] {
    Ask("stop");
    for (int i = 0; i < 10; ++i) {
      loop.Sleep(10ms);
      loop.PumpEvents();
    }
    happened.emplace_back("tuned");
    return Result::Done();
  });
  loop.Run(1s);
  EXPECT_THAT(happened, ElementsAre("tuned", "stop", "stop done"));
}

TEST_F(DoorTest, AWishThatRunsALoopOfItsOwnLetsNoOtherIn) {
  door.Ask([this] {
    Ask("stop");
    loop.Run(100ms);
    happened.emplace_back("over");
    return Result::Done();
  });
  loop.Run(1s);
  EXPECT_THAT(happened, ElementsAre("over", "stop", "stop done"));
}

TEST_F(DoorTest, WhoHoldsTheDoorKeepsWishesWaiting) {
  loop.Post([this] {
    const Door::Hold hold(door);
    Ask("record");
    loop.Run(100ms);
    happened.emplace_back("step over");
  });
  loop.Run(1s);
  EXPECT_THAT(happened, ElementsAre("step over", "record", "record done"));
}

TEST_F(DoorTest, ItTellsWhileAWishIsCarriedOut) {
  std::vector<bool> serving;
  const auto tick = loop.MakeTimer(10ms, [&] { serving.push_back(door.Serving()); });
  tick->SetEnabled(true);
  loop.Run(15ms);
  door.Ask([this] {
    loop.Sleep(10ms);
    loop.PumpEvents();
    return Result::Done();
  });
  loop.Run(22ms);
  EXPECT_THAT(serving, ElementsAre(false, true, false));
}

TEST_F(DoorTest, OnceItIsShutForGoodAllAreAnsweredWithTheReason) {
  Ask("record");
  Ask("stop");
  door.ShutForGood("the program is closing");
  Ask("tune");
  loop.Run(1s);
  EXPECT_THAT(happened,
              ElementsAre("record refused: the program is closing", "stop refused: the program is closing",
                          "tune refused: the program is closing"));
}

TEST_F(DoorTest, AWishMayShutTheDoorAndIsStillAnsweredItself) {
  door.Ask(
      [this] {
        door.ShutForGood("over");
        return Result::Done();
      },
      [this](const Result& answer) { happened.emplace_back(answer.Ok() ? "close done" : "close refused"); });
  Ask("record");
  loop.Run(1s);
  EXPECT_THAT(happened, ElementsAre("record refused: over", "close done"));
}

TEST_F(DoorTest, AnAnswerMayAskForMore) {
  door.Ask([] { return Result::Done(); }, [this](const Result& /*answer*/) { Ask("next"); });
  loop.Run(1s);
  EXPECT_THAT(happened, ElementsAre("next", "next done"));
}

TEST_F(DoorTest, AWishNeedsNobodyToHearItsAnswer) {
  door.Ask([this] {
    happened.emplace_back("done");
    return Result::Done();
  });
  loop.Run(1s);
  EXPECT_THAT(happened, ElementsAre("done"));
}

}  // namespace
}  // namespace kestrune::test
