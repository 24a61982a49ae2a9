#include <gtest/gtest.h>

#include "config/settings/SettingsSection.h"
#include "support/MemorySettingsStore.h"

namespace kestrune::test {
namespace {

class SettingsSectionTest : public ::testing::Test {
 protected:
  void Put(std::string_view key, std::string_view value) { store_.Put("Lorimel", "Kestrune", key, value); }
  [[nodiscard]] std::string Stored(std::string_view key) const {
    return store_.Stored("Lorimel", "Kestrune", key);
  }

  MemorySettingsStore store_;
  config::SettingsSection section_{store_};
};

TEST_F(SettingsSectionTest, UnitsKeepSeparateSettings) {
  config::SettingsSection second(store_, "2");
  EXPECT_TRUE(section_.SaveInt16("Channel", 10));
  EXPECT_TRUE(second.SaveInt16("Channel", 20));
  EXPECT_EQ(store_.Stored("Lorimel", "Kestrune", "Channel"), "10");
  EXPECT_EQ(store_.Stored("Lorimel", "Kestrune2", "Channel"), "20");
  EXPECT_EQ(section_.Int16("Channel", 0), 10);
  EXPECT_EQ(second.Int16("Channel", 0), 20);
}

TEST_F(SettingsSectionTest, TheUnitCanBeGivenLater) {
  section_.SetMultiUnit("x");
  EXPECT_EQ(section_.Name(), "Kestrunex");
  EXPECT_TRUE(section_.SaveBool("Integrel", false));
  EXPECT_EQ(store_.Stored("Lorimel", "Kestrunex", "Integrel"), "False");
}

TEST_F(SettingsSectionTest, AnAbsentKeyReadsAsItsDefault) {
  EXPECT_EQ(section_.Text("T", "text"), "text");
  EXPECT_EQ(section_.Int16("I", -7), -7);
  EXPECT_EQ(section_.Int32("L", 44100), 44100);
  EXPECT_TRUE(section_.Bool("B", true));
  EXPECT_FLOAT_EQ(section_.Single("S", 12.5F), 12.5F);
}

TEST_F(SettingsSectionTest, AValueThatIsNoNumberReadsAsTheDefault) {
  Put("V", "twelve");
  EXPECT_EQ(section_.Int16("V", 45), 45);
  EXPECT_EQ(section_.Int32("V", 44100), 44100);
  EXPECT_TRUE(section_.Bool("V", true));
  EXPECT_FLOAT_EQ(section_.Single("V", 1.5F), 1.5F);
}

TEST_F(SettingsSectionTest, AnEmptyValueIsNoNumber) {
  Put("V", "");
  EXPECT_EQ(section_.Int16("V", 45), 45);
  EXPECT_EQ(section_.Text("V", "default"), "");
}

TEST_F(SettingsSectionTest, AValueOutsideTheWidthReadsAsTheDefault) {
  Put("High", "32768");
  Put("Low", "-32769");
  Put("Huge", "2147483648");
  EXPECT_EQ(section_.Int16("High", 45), 45);
  EXPECT_EQ(section_.Int32("High", 45), 32768);
  EXPECT_EQ(section_.Int16("Low", 45), 45);
  EXPECT_EQ(section_.Int32("Huge", 45), 45);
}

TEST_F(SettingsSectionTest, TheEdgesOfTheWidthsAreRead) {
  Put("A", "32767");
  Put("B", "-32768");
  Put("C", "2147483647");
  EXPECT_EQ(section_.Int16("A", 0), 32767);
  EXPECT_EQ(section_.Int16("B", 0), -32768);
  EXPECT_EQ(section_.Int32("C", 0), 2147483647);
}

TEST_F(SettingsSectionTest, BooleansAreReadFromWordsAndNumbers) {
  Put("Word", "tRUE");
  Put("One", "1");
  Put("MinusOne", "-1");
  Put("Zero", "0");
  EXPECT_TRUE(section_.Bool("Word", false));
  EXPECT_TRUE(section_.Bool("One", false));
  EXPECT_TRUE(section_.Bool("MinusOne", false));
  EXPECT_FALSE(section_.Bool("Zero", true));
}

TEST_F(SettingsSectionTest, ValuesAreWrittenAsText) {
  EXPECT_TRUE(section_.SaveText("T", " a b "));
  EXPECT_TRUE(section_.SaveInt16("I", -32768));
  EXPECT_TRUE(section_.SaveInt32("L", 44100));
  EXPECT_TRUE(section_.SaveBool("B", true));
  EXPECT_TRUE(section_.SaveSingle("S", 1234.5F));
  EXPECT_EQ(Stored("T"), " a b ");
  EXPECT_EQ(Stored("I"), "-32768");
  EXPECT_EQ(Stored("L"), "44100");
  EXPECT_EQ(Stored("B"), "True");
  EXPECT_EQ(Stored("S"), "1234.5");
}

TEST_F(SettingsSectionTest, AWriteThatFailsSaysSo) {
  store_.FailWrites = true;
  EXPECT_FALSE(section_.SaveInt16("I", 1));
  EXPECT_EQ(Stored("I"), "(absent)");
}

TEST_F(SettingsSectionTest, TwoSpellingsOfAKeyAddressTheSameValue) {
  EXPECT_TRUE(section_.SaveText("ScheduleMP3BitRate1", "128 Stereo"));
  EXPECT_EQ(section_.Text("Schedulemp3bitrate1", ""), "128 Stereo");
}

}  // namespace
}  // namespace kestrune::test
