#include "schedule/log/Log.h"

#include "base/DatePattern.h"
#include "base/Ignored.h"
#include "base/OneLine.h"
#include "schedule/log/UserDataFolder.h"

namespace kestrune::schedule {

Log::Log(platform::Files& files, const platform::Environment& environment, const base::EventLoop& loop)
    : files_(files), environment_(environment), loop_(loop), list_(files), trace_(files, environment, loop) {
  SetMultiUnit({});
}

void Log::SetMultiUnit(std::string_view multiUnit) {
  list_.SetLogPath(UserDataFolder(environment_).append("/Kestrune").append(multiUnit).append(".log"));
}

void Log::OpenTrace() {
  if (debugMode_) trace_.Open();
}

void Log::DoLog(std::string_view text) {
  base::Ignored(MakeUserDataFolder(files_, environment_));
  if (text == "Clear") {
    list_.DoLog("Clear");
    return;
  }
  // The file is opened and closed for each line, so that nothing is lost if the program dies.
  const std::string line = base::FormatDate(loop_.Now(), "mmm d, yyyy hh:nn:ss ") + base::OneLine(text);
  base::Ignored(files_.Append(list_.LogPath(), line + "\n"));
  list_.DoLog(line);
}

void Log::DebugPrint(std::string_view text) {
  if (!debugMode_) return;
  DoLog("Debug: " + std::string(text));
  Trace(text);
}

}  // namespace kestrune::schedule
