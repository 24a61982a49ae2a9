// Any bytes are a settings file. The first three bytes of the input are the lengths of a section, a key and a
// value that follow them; the rest is the file into which they are written.

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "base/Text.h"
#include "platform/posix/IniText.h"

namespace {

using kestrune::platform::IniText;

void Require(bool holds) {
  if (!holds) std::abort();
}

std::vector<std::string> LinesOf(std::string_view text) {
  if (text.ends_with('\n')) text.remove_suffix(1);
  return kestrune::base::Split(text, '\n');
}

/// All lines but one are where they were, and what was added was added in one place.
void RequireTheOthersSurvive(const std::vector<std::string>& before, const std::vector<std::string>& after) {
  const auto head = std::mismatch(before.begin(), before.end(), after.begin(), after.end()).first;
  const auto tail = std::mismatch(before.rbegin(), before.rend(), after.rbegin(), after.rend()).first;
  const auto kept = (head - before.begin()) + (tail - before.rbegin());
  Require(kept + 1 >= static_cast<std::ptrdiff_t>(before.size()));
  Require(after.size() <= before.size() + 3);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 3) return 0;
  std::string rest(data + 3, data + size);
  std::array<std::string, 3> texts;
  for (std::size_t i = 0; i < texts.size(); ++i) {
    texts.at(i) = rest.substr(0, data[i]);
    rest.erase(0, data[i]);
  }
  const auto& [section, key, value] = texts;

  IniText ini(rest);
  Require(ini.Text() == rest);
  ini.Set(section, key, value);
  Require(ini.Get(section, key) == value);
  const IniText written(ini.Text());
  Require(written.Text() == ini.Text());
  Require(written.Get(section, key) == value);
  RequireTheOthersSurvive(LinesOf(rest), LinesOf(ini.Text()));

  IniText again(ini.Text());
  again.Set("another section", "another key", "another value");
  const IniText reread(again.Text());
  Require(reread.Get("another section", "another key") == "another value");
  Require(reread.Get(section, key) == value || (kestrune::base::EqualsNoCase(section, "another section") &&
                                                kestrune::base::EqualsNoCase(key, "another key")));
  Require(again.Delete(section, key));
  Require(!IniText(again.Text()).Get(section, key));
  return 0;
}
