// Any bytes are a log file. The window's list has its last lines, as they are, and never more than it can hold.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "base/Text.h"
#include "schedule/log/LogList.h"
#include "support/MemoryFiles.h"

namespace {

using kestrune::schedule::LogList;

void Require(bool holds) {
  if (!holds) std::abort();
}

void RequireLast(const LogList& list, const std::vector<std::string>& lines, std::size_t most) {
  const std::size_t count = std::min(lines.size(), most);
  Require(list.Lines().size() == count);
  Require(
      std::equal(list.Lines().begin(), list.Lines().end(), lines.end() - static_cast<std::ptrdiff_t>(count)));
  Require(list.SelectedLine() == static_cast<int>(count) - 1);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(data, data + size);
  // Short files too shall reach the list's bounds.
  std::string file;
  for (std::size_t i = 0; i < (size % 2 == 0 ? 1U : 600U); ++i) file += text;
  kestrune::test::MemoryFiles files;
  files.Put("/data/log.txt", file);
  LogList list(files);
  list.SetLogPath("/data/log.txt");
  list.DoLog("Load");
  std::vector<std::string> lines = kestrune::base::Lines(file);
  RequireLast(list, lines, LogList::kMaxLines - 1);

  if (text == "Load" || text == "Clear") return 0;
  for (int i = 0; i < 2; ++i) {
    if (lines.size() >= LogList::kMaxLines) lines.erase(lines.begin());
    list.DoLog(text);
    lines.push_back(text);
  }
  Require(list.Lines().size() <= LogList::kMaxLines && list.Lines().back() == text);
  list.DoLog("Clear");
  Require(list.Lines().empty() && files.Text("/data/log.txt").empty());
  return 0;
}
