#include <gtest/gtest.h>

#include "WireBytes.h"
#include "receiver/CommandRules.h"

namespace kestrune::test {
namespace {

using receiver::FaultOfPayload;
using receiver::FaultOfTrailer;

TEST(CommandRules, EveryCommandThatTheProgramSendsIsRight) {
  const receiver::Command rows[] = {
      {Bytes("\x00\x10\x10\x10\x01"), "\xED\xED"},
      {Bytes("\x01\x00"), "\xED\xED"},
      {Bytes("\x10\x02\xB5\x00\x00\x01"), "\x01\x19"},
      {Bytes("\x13\x01"), "\xED\xED"},
      {Bytes("\x13\x00"), "\xED\xED"},
      {Bytes("\x25\x08\x2D\x00"), "\xED\xED"},
      {Bytes("\x25\x09\x00\x00"), "\xED\xED"},
      {"\x31", "\xED\xED"},
      {"\x40", "\x01\x40"},
      {"\x43", "\xED\xED"},
      {Bytes("\x74\x00\x01"), "\x01\x77"},
      {Bytes("\x74\x0D"), "\x01\x82"},
      {Bytes("\x74\x02\x01\x01"), "\x01\x7B"},
      {Bytes("\x74\x04\x01\x05"), "\x01\x81"},
      {Bytes("\x74\x0B\x01"), "\x01\x82"},
  };
  for (const receiver::Command& command : rows) {
    EXPECT_EQ(FaultOfPayload(command.Payload), "") << receiver::HexOf(command.Payload);
    EXPECT_EQ(FaultOfTrailer(command), "") << receiver::HexOf(command.Payload);
  }
}

TEST(CommandRules, AWrongByteIsNamedWithItsPlace) {
  EXPECT_EQ(FaultOfPayload(Bytes("\x00\x10\x10\x11\x01")), "byte 4 is 11");
  EXPECT_EQ(FaultOfPayload(Bytes("\x10\x02\x2D\x00\x02\x01")), "byte 5 is 02");
  EXPECT_EQ(FaultOfPayload(Bytes("\x25\x08\x2D")), "the command ends after byte 3");
  EXPECT_EQ(FaultOfPayload(Bytes("\x31\x00")), "byte 2 is 00");
  EXPECT_EQ(FaultOfPayload(Bytes("\x22\x00")), "there is no command of type 22");
}

TEST(CommandRules, ATrailerIsTheFillerOrTheSum) {
  EXPECT_EQ(FaultOfTrailer({"\x31", "\x01\x31"}), "");
  EXPECT_EQ(FaultOfTrailer({"\x31", "\x01\x32"}), "the trailer is 01 32, and neither ED ED nor 01 31");
  EXPECT_EQ(FaultOfTrailer({"\x31", Bytes("\x00\x31")}), "the trailer is 00 31, and neither ED ED nor 01 31");
  EXPECT_EQ(FaultOfTrailer({"\x31", Bytes("\xED\x00")}), "the trailer is ED 00, and neither ED ED nor 01 31");
}

TEST(CommandRules, ASelectCarriesTheSumForChannelOne) {
  EXPECT_EQ(FaultOfTrailer({Bytes("\x10\x02\x2D\x00\x00\x01"), "\x01\x19"}), "");
  EXPECT_NE(FaultOfTrailer({Bytes("\x10\x02\x2D\x00\x00\x01"), "\x01\x45"}), "");
}

}  // namespace
}  // namespace kestrune::test
