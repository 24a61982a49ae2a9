#include "schedule/log/TraceFile.h"

#include <chrono>
#include <string>

#include "base/DatePattern.h"
#include "base/Ignored.h"
#include "base/Numbers.h"
#include "base/OneLine.h"
#include "schedule/log/UserDataFolder.h"

namespace kestrune::schedule {

void TraceFile::Open() {
  if (file_) return;
  file_ = files_.OpenForWriting(MakeUserDataFolder(files_, environment_) + "/Kestrune" +
                                base::FormatDate(loop_.Now(), "yyyy-mm-dd_hhnn") + ".txt");
}

void TraceFile::WriteLine(std::string_view text) {
  if (!file_) return;
  const std::chrono::duration<float> sinceMidnight = loop_.TimeOfDay();
  base::Ignored(file_->WriteLine(base::SingleText(sinceMidnight.count()) + " " + base::OneLine(text)));
}

}  // namespace kestrune::schedule
