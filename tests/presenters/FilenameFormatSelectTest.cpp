#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "presenters/FilenameFormatSelect.h"

namespace kestrune::test {
namespace {

class FilenameFormatSelectTest : public ::testing::Test {
 protected:
  std::string text_;
  presenters::FilenameFormatSelect select_{text_, [this](std::string_view text) { text_ = text; }};
};

TEST_F(FilenameFormatSelectTest, TheEightRowsHaveTheirFormatsAndDescriptions) {
  const std::vector<std::pair<std::string_view, std::string_view>> told{
      {"%a - %s", "Everything in the main File Save folder, songs named \"Artist - Song Title.mp3\""},
      {"%c - %t\\%a - %s", "Separate folder for each channel, songs named \"Artist - Song Title.mp3\""},
      {"%a\\%a - %s", "Separate folder for each artist, songs named \"Artist - Song Title.mp3\""},
      {"%g\\%a - %s", "Separate folder for each genre, songs named \"Artist - Song Title.mp3\""},
      {"%c - %t\\%d\\%a - %s",
       "Separate folder for each channel, separate subfolder with timestamp of start of recording, songs "
       "named \"Artist - Song Title.mp3\""},
      {"%d\\%a - %s",
       "Separate folder with timestamp of start of recording, songs named \"Artist - Song Title.mp3\""},
      {"%g\\%c - %t\\%a - %s",
       "Separate folder for each genre, separate subfolder for each station, songs named \"Artist - Song "
       "Title.mp3\""},
      {"%d\\%n - %a - %s",
       "Separate folder for each recording session, songs named \"Counter - Artist - Song Title.mp3\""},
  };
  ASSERT_EQ(presenters::FilenameFormats().size(), told.size());
  for (std::size_t row = 0; row < told.size(); ++row) {
    EXPECT_EQ(presenters::FilenameFormats()[row].Format, told[row].first);
    EXPECT_EQ(presenters::FilenameFormats()[row].Description, told[row].second);
    select_.cmdSelect(row);
    EXPECT_EQ(text_, told[row].first);
  }
}

TEST_F(FilenameFormatSelectTest, EachOfTheFirstSevenIsMarkedAndNoOther) {
  for (std::size_t present = 0; present < 7; ++present) {
    text_ = presenters::FilenameFormats()[present].Format;
    for (std::size_t row = 0; row < 8; ++row) {
      EXPECT_EQ(select_.Caption(row), row == present ? "== Selected ==" : "Select") << present << row;
    }
  }
}

TEST_F(FilenameFormatSelectTest, CapitalsAreMarkedToo) {
  text_ = "%G\\%C - %T\\%A - %S";
  EXPECT_EQ(select_.Caption(6), "== Selected ==");
}

TEST_F(FilenameFormatSelectTest, ABlankAroundThePresentFormatMarksNothing) {
  for (const char* text : {" %a - %s", "%a - %s "}) {
    text_ = text;
    for (std::size_t row = 0; row < 8; ++row) EXPECT_EQ(select_.Caption(row), "Select");
  }
}

TEST_F(FilenameFormatSelectTest, AFormatOfTheUsersOwnAndTheLastRowMarkNothing) {
  for (const char* text : {"%s by %a", "", "%d\\%n - %a - %s"}) {
    text_ = text;
    for (std::size_t row = 0; row < 8; ++row) EXPECT_EQ(select_.Caption(row), "Select") << text;
  }
}

}  // namespace
}  // namespace kestrune::test
