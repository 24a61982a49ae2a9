#include <algorithm>
#include <sstream>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "receiver/JsonLines.h"

namespace kestrune::test {
namespace {

using std::chrono::milliseconds;

TEST(JsonLines, OneObjectALineBeginningWithTimeAndEvent) {
  std::ostringstream out;
  receiver::JsonLines lines(out);
  lines.Write(milliseconds(1250), "tuned", {{"channel", 8}});
  lines.Write(milliseconds(2000), "closed");
  EXPECT_EQ(out.str(),
            "{\"time\":1.25,\"event\":\"tuned\",\"channel\":8}\n"
            "{\"time\":2.0,\"event\":\"closed\"}\n");
}

TEST(JsonLines, ATextThatIsNoUtf8DoesNotBreakTheLine) {
  std::ostringstream out;
  receiver::JsonLines lines(out);
  lines.Write(milliseconds(0), "sound", {{"title", "caf\xE9\n"}});
  const std::string text = out.str();
  EXPECT_TRUE(nlohmann::json::accept(text));
  EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 1);
}

}  // namespace
}  // namespace kestrune::test
