#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "WireBytes.h"
#include "receiver/CommandReader.h"

namespace kestrune::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

const std::string kMuteOn = Bytes("\x5A\xA5\x00\x02\x13\x01\xED\xED");
const std::string kIdentifier = Bytes("\x5A\xA5\x00\x01\x31\xED\xED");

TEST(CommandReader, GivesThePayloadOfAWholeFrame) {
  receiver::CommandReader reader;
  EXPECT_THAT(reader.Feed(kMuteOn), ElementsAre(Bytes("\x13\x01")));
  EXPECT_EQ(reader.SkippedBytes(), 0);
}

TEST(CommandReader, CompletesAFrameThatComesByteByByte) {
  receiver::CommandReader reader;
  for (std::size_t i = 0; i + 1 < kMuteOn.size(); ++i) {
    EXPECT_THAT(reader.Feed(kMuteOn.substr(i, 1)), IsEmpty());
  }
  EXPECT_THAT(reader.Feed(kMuteOn.substr(kMuteOn.size() - 1)), ElementsAre(Bytes("\x13\x01")));
}

TEST(CommandReader, GivesTwoFramesOfOneReadInOrder) {
  receiver::CommandReader reader;
  EXPECT_THAT(reader.Feed(kIdentifier + kMuteOn), ElementsAre("\x31", Bytes("\x13\x01")));
}

TEST(CommandReader, SkipsAndCountsNoiseInFrontOfAFrame) {
  receiver::CommandReader reader;
  EXPECT_THAT(reader.Feed("\x01\x5A\x02" + kIdentifier), ElementsAre("\x31"));
  EXPECT_EQ(reader.SkippedBytes(), 3);
}

TEST(CommandReader, KeepsTheFirstHalfOfAHeaderForTheNextRead) {
  receiver::CommandReader reader;
  EXPECT_THAT(reader.Feed("\x01\x5A"), IsEmpty());
  EXPECT_THAT(reader.Feed(kIdentifier.substr(1)), ElementsAre("\x31"));
}

TEST(CommandReader, TakesAnAbsurdLengthForNoise) {
  receiver::CommandReader reader;
  EXPECT_THAT(reader.Feed(Bytes("\x5A\xA5\xFF\xFF") + kIdentifier), ElementsAre("\x31"));
  EXPECT_THAT(reader.Feed(Bytes("\x5A\xA5\x00\x00") + kIdentifier), ElementsAre("\x31"));
}

}  // namespace
}  // namespace kestrune::test
