// Hints as JSON, as text, and as they are followed.

#include <fstream>
#include <iterator>
#include <string>

#include <gtest/gtest.h>

#include "control/HintFollow.h"
#include "control/HintJson.h"
#include "control/PeopleText.h"

namespace kestrune::control {
namespace {

HintReport Hint(std::int64_t number, const std::string& song = "Winter Apples") {
  return {.Number = number,
          .Began = base::DateValue::FromCivil(2026, 11, 21, 20, 0, 0),
          .Channel = 47,
          .Station = "Campfire Folk",
          .Artist = "Abigail Wren",
          .Song = song,
          .Text = "Now on 47 Campfire Folk: Abigail Wren - " + song};
}

constexpr const char* kOne =
    R"({"number":1,"began":"2026-11-21 20:00:00","channel":47,"station":"Campfire Folk","artist":"Abigail Wren",)"
    R"("song":"Winter Apples","text":"Now on 47 Campfire Folk: Abigail Wren - Winter Apples"})";

TEST(HintJson, HintsComeBackAsTheyWent) {
  const Json json = ToJson(std::vector{Hint(1)});
  EXPECT_EQ(json.dump(), "[" + std::string(kOne) + "]");
  EXPECT_EQ(HintsFromJson(json), std::vector{Hint(1)});
  EXPECT_FALSE(HintsFromJson(Json::object()));
  EXPECT_FALSE(HintsFromJson(Json::parse(R"([{"number":1}])")));
}

TEST(HintJson, EveryMemberIsDocumented) {
  std::ifstream file(KESTRUNE_DOCS "/json.md");
  const std::string page((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  const std::size_t begin = page.find("\n## hints\n");
  ASSERT_NE(begin, std::string::npos);
  const std::string section = page.substr(begin, page.find("\n## ", begin + 1) - begin);
  const Json hint = ToJson(Hint(1));
  for (const auto& [name, value] : hint.items())
    EXPECT_NE(section.find("`" + name + "`"), std::string::npos) << name;
}

TEST(HintJson, PeopleReadALineForEach) {
  EXPECT_EQ(PeopleText("hints", ToJson(std::vector{Hint(2, "Tin Cup"), Hint(1)})),
            "Now on 47 Campfire Folk: Abigail Wren - Tin Cup\n"
            "Now on 47 Campfire Folk: Abigail Wren - Winter Apples\n");
  EXPECT_EQ(PeopleText("hints", Json::array()), "nothing of the Grab lists is heard to begin elsewhere\n");
  EXPECT_FALSE(PeopleText("hints", Json::object()));
  HintReport evil = Hint(1);
  evil.Text = "a\x1B[2J";
  EXPECT_EQ(PeopleText("hints", ToJson(std::vector{evil}))->find('\x1B'), std::string::npos);
}

TEST(HintFollow, EachHintIsSaidOnceTheOldestFirst) {
  HintFollow follow(false);
  EXPECT_EQ(follow.NewIn(Json::array()), "");
  EXPECT_EQ(follow.NewIn(ToJson(std::vector{Hint(2, "B"), Hint(1, "A")})),
            "Now on 47 Campfire Folk: Abigail Wren - A\nNow on 47 Campfire Folk: Abigail Wren - B\n");
  EXPECT_EQ(follow.NewIn(ToJson(std::vector{Hint(2, "B"), Hint(1, "A")})), "");
  // One that comes back is the same.
  EXPECT_EQ(follow.NewIn(ToJson(std::vector{Hint(1, "A"), Hint(3, "C"), Hint(2, "B")})),
            "Now on 47 Campfire Folk: Abigail Wren - C\n");
  EXPECT_FALSE(follow.NewIn(Json(7)));
}

TEST(HintFollow, MachinesGetAnObjectALine) {
  HintFollow follow(true);
  EXPECT_EQ(follow.NewIn(ToJson(std::vector{Hint(1)})), std::string(kOne) + "\n");
}

}  // namespace
}  // namespace kestrune::control
