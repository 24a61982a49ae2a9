#include <gtest/gtest.h>

#include "platform/posix/PortMap.h"

namespace kestrune::test {
namespace {

using platform::PortMap;

TEST(PortMap, EveryNumberHasItsDevice) {
  const struct {
    std::int16_t Number;
    const char* Device;
  } rows[] = {
      {1, "/dev/ttyUSB0"}, {2, "/dev/ttyUSB1"},  {3, "/dev/ttyUSB2"},  {4, "/dev/ttyUSB3"},
      {5, "/dev/ttyUSB4"}, {6, "/dev/ttyUSB5"},  {7, "/dev/ttyUSB6"},  {8, "/dev/ttyUSB7"},
      {9, "/dev/ttyACM0"}, {10, "/dev/ttyACM1"}, {11, "/dev/ttyACM2"}, {12, "/dev/ttyACM3"},
      {13, "/dev/ttyS0"},  {14, "/dev/ttyS1"},   {15, "/dev/ttyS2"},   {16, "/dev/ttyS3"},
  };
  for (const auto& row : rows) EXPECT_EQ(PortMap().Device(row.Number), row.Device);
}

TEST(PortMap, NumbersOutsideOneToSixteenHaveNone) {
  PortMap ports;
  for (const std::int16_t number : {-1, 0, 17, 32767}) {
    ports.SetDevice(number, "/dev/x");
    EXPECT_EQ(ports.Device(number), "");
  }
}

TEST(PortMap, ANumberCanBeGivenAnotherDevice) {
  PortMap ports;
  EXPECT_EQ(ports.SetFromText("3=/dev/serial/by-id/usb=1"), "");
  EXPECT_EQ(ports.Device(3), "/dev/serial/by-id/usb=1");
  EXPECT_EQ(ports.Device(2), "/dev/ttyUSB1");
}

TEST(PortMap, SaysWhatIsWrongWithAText) {
  const struct {
    const char* Text;
    const char* Error;
  } rows[] = {
      {"", "\"\" is not of the form N=PATH"},
      {"3", "\"3\" is not of the form N=PATH"},
      {"3=", "\"3=\" is not of the form N=PATH"},
      {"=/dev/x", "\"=/dev/x\" is not of the form N=PATH"},
      {"x=/dev/x", "\"x=/dev/x\" is not of the form N=PATH"},
      {"99999=/dev/x", "\"99999=/dev/x\" is not of the form N=PATH"},
      {"0=/dev/x", "port 0 is not within 1 to 16"},
      {"17=/dev/x", "port 17 is not within 1 to 16"},
  };
  for (const auto& row : rows) EXPECT_EQ(PortMap().SetFromText(row.Text), row.Error);
}

}  // namespace
}  // namespace kestrune::test
