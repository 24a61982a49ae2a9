#include <gtest/gtest.h>

#include "receiver/LinePacer.h"

namespace kestrune::test {
namespace {

using std::chrono::microseconds;

// 10 bits at 9600 bits a second take 1041.67 microseconds.

TEST(LinePacer, AByteIsThereWhenItsTenthBitIs) {
  receiver::LinePacer line;
  line.Queue(microseconds(0), "ab");
  EXPECT_EQ(line.Take(microseconds(1041)), "");
  EXPECT_EQ(line.Take(microseconds(1042)), "a");
  EXPECT_EQ(line.Take(microseconds(2083)), "");
  EXPECT_EQ(line.Take(microseconds(2084)), "b");
}

TEST(LinePacer, NineHundredAndSixtyBytesTakeOneSecond) {
  receiver::LinePacer line;
  line.Queue(microseconds(0), std::string(960, 'x'));
  EXPECT_EQ(line.FreeAt(), microseconds(1'000'000));
  EXPECT_EQ(line.Take(microseconds(999'999)).size(), 959U);
  EXPECT_EQ(line.Take(microseconds(1'000'000)).size(), 1U);
}

TEST(LinePacer, ABusyLineSendsTheNextFrameAfterTheFirst) {
  receiver::LinePacer line(1000);
  line.Queue(microseconds(0), "ab");
  line.Queue(microseconds(5000), "c");
  EXPECT_EQ(line.Take(microseconds(29'999)), "ab");
  EXPECT_EQ(line.Take(microseconds(30'000)), "c");
}

TEST(LinePacer, AnIdleLineStartsWhenItIsAsked) {
  receiver::LinePacer line(1000);
  line.Queue(microseconds(0), "a");
  line.Queue(microseconds(50'000), "b");
  EXPECT_EQ(line.Take(microseconds(59'999)), "a");
  EXPECT_EQ(line.Take(microseconds(60'000)), "b");
}

TEST(LinePacer, KnowsWhenTheNextByteArrives) {
  receiver::LinePacer line(1000);
  EXPECT_FALSE(line.NextByte());
  line.Queue(microseconds(0), "ab");
  EXPECT_EQ(line.NextByte(), microseconds(10'000));
  EXPECT_EQ(line.Take(microseconds(10'000)), "a");
  EXPECT_EQ(line.NextByte(), microseconds(20'000));
  EXPECT_EQ(line.Take(microseconds(20'000)), "b");
  EXPECT_FALSE(line.NextByte());
}

}  // namespace
}  // namespace kestrune::test
