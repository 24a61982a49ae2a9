#include <memory>
#include <string>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/posix/TemporaryFolder.h"
#include "real/LineUps.h"
#include "real/Receiver.h"
#include "real/Unit.h"
#include "real/Waiting.h"
#include "support/LoopbackServer.h"

namespace kestrune::test {
namespace {

using testing::HasSubstr;

/// One unit without windows against a server that first has a newer version, then none, and then says nothing.
class Update : public testing::Test {
 protected:
  static Answer Text(const std::string& body) {
    // Qt's client asks a second time if only the connection's end ends an answer.
    return {{{"HTTP/1.0 200 OK\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body}}};
  }

  TemporaryFolder folder_;
  LoopbackServer server_{{Text("003.000.030\r\nhttps://updates.invalid/Setup.bin\r\n"),
                          Text("003.000.031\nhttps://updates.invalid/Other.bin\n"), Text("003.000.029"),
                          Answer{{}, Ending::KeptOpen}}};
  Receiver radio_{folder_ / "radio", Receiver::Setup{TenStations(6)}};
  Unit unit_{folder_ / "profile",
             Unit::Setup{"pipe:" + QuietFile(folder_.Path()),
                         radio_.Link(),
                         {{"Channel", "8"}, {"CheckUpdatesAtStartup", "True"}},
                         {},
                         {{"KESTRUNE_UPDATE_ADDRESS", server_.Address("/NewVersion.txt")}}}};
};

TEST_F(Update, AUnitAsksAtItsStartAndByHandAndLivesThroughASilentServer) {
  unit_.Start();
  ASSERT_TRUE(unit_.WaitUntilIdle()) << unit_.Program().Errors();
  EXPECT_THAT(
      unit_.Program().Errors(),
      HasSubstr("New Version Available: There is an updated version of Kestrune available. Do you want to "
                "install it?\n[answered: No]\n"));

  const Outcome newer = unit_.Ctl({"update"});
  EXPECT_EQ(newer.Exit, 0);
  EXPECT_EQ(newer.Output,
            "There is an updated version of Kestrune available.\nhttps://updates.invalid/Other.bin\n");
  const Outcome asked = unit_.Ctl({"--json", "update"});
  ASSERT_EQ(asked.Exit, 0) << asked.Errors;
  const Unit::Json current = Unit::Json::parse(asked.Output);
  EXPECT_EQ(current["running"], "003.000.029");
  EXPECT_EQ(current["newer"], false);

  // The server keeps the next one waiting, and the unit goes on.
  std::thread asker([this] { EXPECT_EQ(unit_.Ctl({"update"}).Exit, 1); });
  ASSERT_TRUE(WaitUntil(10s, [this] { return server_.Requests().size() == 4; }));
  EXPECT_EQ(unit_.Status()["port"], 1);
  const Outcome second = unit_.Ctl({"update"});
  EXPECT_EQ(second.Exit, 1);
  EXPECT_THAT(second.Errors, HasSubstr("an update check is under way already"));
  EXPECT_EQ(unit_.Quit(), 0) << "a check under way holds up no end";
  asker.join();
}

}  // namespace
}  // namespace kestrune::test
