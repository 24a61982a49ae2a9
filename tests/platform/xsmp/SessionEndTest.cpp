#include <chrono>
#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/posix/TemporaryFolder.h"
#include "platform/xsmp/HiddenSessionManager.h"
#include "platform/xsmp/SessionEnd.h"
#include "support/PrivateSession.h"
#include "support/Pump.h"

namespace kestrune::test {
namespace {

using platform::HiddenSessionManager;
using platform::SessionEnd;

const std::vector<std::string> kCommand{"/usr/bin/kestrune", "/multi", "2"};

class SessionEndTest : public testing::Test {
 protected:
  SessionEndTest() { Application(); }
  void SetUp() override { ASSERT_NE(session_.Address(), "") << "no session manager could be started"; }

  [[nodiscard]] SessionEnd& Connect() {
    const VariableValue address("SESSION_MANAGER", session_.Address());
    return client_.emplace(kCommand, [this] { ++endings_; });
  }

  [[nodiscard]] bool UntilHeard(const std::string& line, int times = 1) const {
    return PumpUntil([&] { return session_.Heard(line) >= times; });
  }
  /// What comes by now is served.
  static void Settle() {
    EXPECT_FALSE(PumpUntil([] { return false; }, std::chrono::milliseconds(200)));
  }

  PrivateSession session_;
  int endings_ = 0;
  std::optional<SessionEnd> client_;
};

TEST_F(SessionEndTest, WithoutASessionManagerThereIsNothingToWaitFor) {
  const VariableValue address("SESSION_MANAGER", "");
  const SessionEnd client(kCommand, [this] { ++endings_; });
  EXPECT_FALSE(client.Connected());
}

TEST_F(SessionEndTest, AnAddressWhereNobodyIsIsNoObstacle) {
  const VariableValue address("SESSION_MANAGER", "local/nowhere:@/tmp/.ICE-unix/nobody");
  const SessionEnd client(kCommand, [this] { ++endings_; });
  EXPECT_FALSE(client.Connected());
}

TEST_F(SessionEndTest, TheSessionKnowsTheProgramAndHowToStartItAgain) {
  EXPECT_TRUE(Connect().Connected());
  EXPECT_TRUE(UntilHeard("1 registered"));
  EXPECT_TRUE(UntilHeard("1 restarts by /usr/bin/kestrune /multi 2"));
  EXPECT_TRUE(UntilHeard("1 saved")) << "every client is asked once when it registers";
  EXPECT_EQ(endings_, 0);
}

TEST_F(SessionEndTest, ASessionThatEndsWaitsUntilTheProgramIsDone) {
  ASSERT_TRUE(Connect().Connected());
  ASSERT_TRUE(UntilHeard("1 saved"));
  session_.Tell("end");
  ASSERT_TRUE(PumpUntil([this] { return endings_ == 1; }));
  Settle();
  EXPECT_EQ(session_.Heard("1 saved"), 1) << "the session would go on with its end";
  client_.reset();
  EXPECT_TRUE(session_.WaitToHear("1 saved", 2));
  EXPECT_TRUE(session_.WaitToHear("1 closed"));
  EXPECT_EQ(endings_, 1);
}

TEST_F(SessionEndTest, ASessionThatIsOnlySavedEndsNothing) {
  ASSERT_TRUE(Connect().Connected());
  ASSERT_TRUE(UntilHeard("1 saved"));
  session_.Tell("save");
  EXPECT_TRUE(UntilHeard("1 saved", 2));
  EXPECT_EQ(endings_, 0);
}

TEST_F(SessionEndTest, AnEndThatIsTakenBackIsAnsweredAndDoesNotStopTheClose) {
  ASSERT_TRUE(Connect().Connected());
  ASSERT_TRUE(UntilHeard("1 saved"));
  session_.Tell("end");
  ASSERT_TRUE(PumpUntil([this] { return endings_ == 1; }));
  session_.Tell("cancel");
  EXPECT_TRUE(UntilHeard("1 saved", 2));
  session_.Tell("end");
  Settle();
  EXPECT_EQ(endings_, 1) << "the program is closing already";
}

TEST_F(SessionEndTest, LettingGoOfTheClientsEndsTheProgramToo) {
  ASSERT_TRUE(Connect().Connected());
  ASSERT_TRUE(UntilHeard("1 saved"));
  session_.Tell("die");
  EXPECT_TRUE(UntilHeard("1 closed"));
  EXPECT_EQ(endings_, 1);
  EXPECT_FALSE(client_->Connected());
}

TEST_F(SessionEndTest, ASessionManagerThatDiesTakesNothingWithIt) {
  ASSERT_TRUE(Connect().Connected());
  ASSERT_TRUE(UntilHeard("1 saved"));
  session_.Kill();
  EXPECT_TRUE(PumpUntil([this] { return !client_->Connected(); }));
  EXPECT_EQ(endings_, 0);
}

TEST_F(SessionEndTest, ASessionManagerThatDiesBehindItsQuestionTakesNothingWithIt) {
  ASSERT_TRUE(Connect().Connected());
  ASSERT_TRUE(UntilHeard("1 saved"));
  session_.Tell("end");
  ASSERT_TRUE(PumpUntil([this] { return endings_ == 1; }));
  session_.Kill();
  client_.reset();
  EXPECT_EQ(endings_, 1);
}

TEST(HiddenSessionManagerTest, TheEnvironmentNamesNoneMeanwhileAndTheSameAgainBehindIt) {
  const VariableValue address("SESSION_MANAGER", "local/here:@/tmp/.ICE-unix/1");
  {
    const HiddenSessionManager hidden;
    EXPECT_EQ(std::getenv("SESSION_MANAGER"), nullptr);
  }
  EXPECT_STREQ(std::getenv("SESSION_MANAGER"), "local/here:@/tmp/.ICE-unix/1");
}

}  // namespace
}  // namespace kestrune::test
