#include "schedule/log/LogList.h"

#include "base/Ignored.h"
#include "schedule/log/EachLine.h"

namespace kestrune::schedule {

void LogList::DoLog(std::string_view logText) {
  Change change = Change::Reset;
  if (logText == "Load") {
    Load();
  } else if (logText == "Clear") {
    lines_.clear();
    base::Ignored(files_.Replace(logPath_, {}));
  } else {
    lines_.emplace_back(logText);
    while (lines_.size() > kMaxLines) lines_.pop_front();
    change = Change::Added;
  }
  if (changeHandler_) changeHandler_(change);
}

void LogList::Load() {
  const auto text = files_.Read(logPath_);
  if (!text) return;
  EachLine(*text, [this](std::string_view line) {
    lines_.emplace_back(line);
    if (lines_.size() == kMaxLines) lines_.pop_front();
  });
}

}  // namespace kestrune::schedule
