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

/// The payloads of the commands that these bytes complete.
std::vector<std::string> Fed(receiver::CommandReader& reader, const std::string& bytes) {
  std::vector<std::string> payloads;
  for (const receiver::Command& command : reader.Feed(bytes)) payloads.push_back(command.Payload);
  return payloads;
}

TEST(CommandReader, ReturnsThePayloadOfAWholeFrame) {
  receiver::CommandReader reader;
  EXPECT_THAT(Fed(reader, kMuteOn), ElementsAre(Bytes("\x13\x01")));
  EXPECT_EQ(reader.SkippedBytes(), 0);
}

TEST(CommandReader, ReturnsTheTrailerUnchanged) {
  receiver::CommandReader reader;
  const std::vector<receiver::Command> commands =
      reader.Feed(kMuteOn + Bytes("\x5A\xA5\x00\x01\x31\x00\x7F"));
  ASSERT_EQ(commands.size(), 2U);
  EXPECT_EQ(commands[0].Trailer, "\xED\xED");
  EXPECT_EQ(commands[1].Trailer, Bytes("\x00\x7F"));
}

TEST(CommandReader, CompletesAFrameThatComesByteByByte) {
  receiver::CommandReader reader;
  for (std::size_t i = 0; i + 1 < kMuteOn.size(); ++i) {
    EXPECT_THAT(Fed(reader, kMuteOn.substr(i, 1)), IsEmpty());
  }
  EXPECT_THAT(Fed(reader, kMuteOn.substr(kMuteOn.size() - 1)), ElementsAre(Bytes("\x13\x01")));
}

TEST(CommandReader, ReturnsTwoFramesOfOneReadInOrder) {
  receiver::CommandReader reader;
  EXPECT_THAT(Fed(reader, kIdentifier + kMuteOn), ElementsAre("\x31", Bytes("\x13\x01")));
}

TEST(CommandReader, SkipsAndCountsNoiseBeforeAFrame) {
  receiver::CommandReader reader;
  EXPECT_THAT(Fed(reader, "\x01\x5A\x02" + kIdentifier), ElementsAre("\x31"));
  EXPECT_EQ(reader.SkippedBytes(), 3);
}

TEST(CommandReader, KeepsTheFirstHalfOfAHeaderForTheNextRead) {
  receiver::CommandReader reader;
  EXPECT_THAT(Fed(reader, "\x01\x5A"), IsEmpty());
  EXPECT_THAT(Fed(reader, kIdentifier.substr(1)), ElementsAre("\x31"));
}

TEST(CommandReader, TakesAnAbsurdLengthForNoise) {
  receiver::CommandReader reader;
  EXPECT_THAT(Fed(reader, Bytes("\x5A\xA5\xFF\xFF") + kIdentifier), ElementsAre("\x31"));
  EXPECT_THAT(Fed(reader, Bytes("\x5A\xA5\x00\x00") + kIdentifier), ElementsAre("\x31"));
}

}  // namespace
}  // namespace kestrune::test
