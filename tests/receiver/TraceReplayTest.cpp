#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "WireBytes.h"
#include "receiver/TraceReplay.h"

namespace kestrune::test {
namespace {

using receiver::TraceReplay;
using std::chrono::milliseconds;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(TraceReplay, SendsTheReceivedLinesAtTheirIntervals) {
  TraceReplay replay(
      "43200.5 > 5A A5 00 01 31 ED ED \n"
      "43200.75 < 5A A5 00 03 F4 01 00 01 F7 \n"
      "43200.75 !InvalidMsgType F4\n"
      "43202 < 00 FF \r\n");
  EXPECT_EQ(replay.Frames(), 2U);
  EXPECT_EQ(replay.Next(), milliseconds(250));
  EXPECT_THAT(replay.Take(milliseconds(249)), IsEmpty());
  EXPECT_THAT(replay.Take(milliseconds(250)), ElementsAre(Bytes("\x5A\xA5\x00\x03\xF4\x01\x00\x01\xF7")));
  EXPECT_THAT(replay.Take(milliseconds(1500)), ElementsAre(Bytes("\x00\xFF")));
  EXPECT_FALSE(replay.Next());
}

TEST(TraceReplay, GoesOnOverMidnight) {
  TraceReplay replay("86399.5 < 01\n0.25 < 02\n3.5 < 03\n");
  EXPECT_THAT(replay.Take(milliseconds(749)), ElementsAre("\x01"));
  EXPECT_THAT(replay.Take(milliseconds(750)), ElementsAre("\x02"));
  EXPECT_EQ(replay.Next(), milliseconds(4000));
}

TEST(TraceReplay, ReadsTimesWithAnExponent) {
  TraceReplay replay("1.5E-02 < 01\n1 < 02");
  EXPECT_THAT(replay.Take(milliseconds(0)), ElementsAre("\x01"));
  EXPECT_EQ(replay.Next(), milliseconds(985));
}

TEST(TraceReplay, PassesOverWhatIsNoLineOfATrace) {
  EXPECT_EQ(TraceReplay("").Frames(), 0U);
  EXPECT_EQ(TraceReplay("hello\n\n12 <\n12 < \n-3 < 01\n99999 < 01\n12 < zz\n").Frames(), 0U);
}

}  // namespace
}  // namespace kestrune::test
