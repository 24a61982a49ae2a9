#include "recorder/SongFiles.h"

#include <algorithm>

#include <fmt/format.h>

#include "base/DatePattern.h"
#include "base/Ignored.h"

namespace kestrune::recorder {

void AdvanceName(std::string& fileName) {
  if (!fileName.empty() && fileName.back() >= '1' && fileName.back() <= '8') {
    ++fileName.back();
  } else {
    fileName += '1';
  }
}

SongFiles::SongFiles(platform::Files& files, platform::FileSync& sync, base::Journal& journal)
    : files_(files), sync_(sync), journal_(journal) {
  sync_.SetFailureHandler([&journal](const std::string& path, const base::Result& failure) {
    journal.DoLog(fmt::format("\"{}\" may not be on the disk: {}", path, failure.Cause()));
  });
}

SongFiles::~SongFiles() {
  sync_.SetFailureHandler({});
}

void SongFiles::MakeFolder(const std::string& folder) {
  for (std::size_t end = folder.find('/', 1); end != std::string::npos; end = folder.find('/', end + 1)) {
    const std::string part = folder.substr(0, end);
    const base::Result made = files_.CreateFolder(part);
    if (made || files_.Exists(part)) continue;
    journal_.DoLog(fmt::format("Cannot create the folder \"{}\": {}", part, made.Cause()));
    return;
  }
}

MovedSong SongFiles::Move(CaptureRecord& capture, const std::string& target, base::DateValue now) {
  const platform::RenameResult moved = files_.RenameNoReplace(capture.Outcome.File, target);
  if (moved) {
    Settle(capture, target);
    return {.Where = MovedSong::To::FinalName, .Path = target, .Cause = {}};
  }
  if (moved.NameTaken) {
    return {.Where = MovedSong::To::NameTaken, .Path = capture.Outcome.File, .Cause = moved.Outcome.Cause()};
  }
  return KeepUnderOwnName(capture, moved.Outcome.Cause(), now);
}

MovedSong SongFiles::KeepUnderOwnName(CaptureRecord& capture, const std::string& cause, base::DateValue now) {
  const std::string temporary = capture.Outcome.File;
  if (!files_.Exists(temporary)) {
    capture.Outcome.File.clear();
    return {.Where = MovedSong::To::Nowhere, .Path = {}, .Cause = cause};
  }
  std::string name = capture.Folder + "Kept " + base::FormatDate(now, "yyyymmdd_hhnnss");
  for (;;) {
    const std::string path = name + "." + capture.Extension;
    const platform::RenameResult moved = files_.RenameNoReplace(temporary, path);
    if (moved) {
      Settle(capture, path);
      return {.Where = MovedSong::To::OwnName, .Path = path, .Cause = cause};
    }
    if (!moved.NameTaken) break;
    AdvanceName(name);
  }
  // The folder lets nothing be renamed. The song stays where it is, and no later capture takes its place.
  kept_.push_back(temporary);
  Settle(capture, temporary);
  return {.Where = MovedSong::To::OwnName, .Path = temporary, .Cause = cause};
}

void SongFiles::Settle(CaptureRecord& capture, const std::string& path) {
  capture.Outcome.FinalName = path;
  capture.Outcome.File.clear();
  sync_.Sync(path);
}

void SongFiles::Discard(CaptureRecord& capture) {
  if (capture.Outcome.File.empty()) return;
  base::Ignored(files_.Remove(capture.Outcome.File));
  capture.Outcome.File.clear();
}

void SongFiles::RemoveLeftovers(const std::string& folder, std::string_view pattern) {
  for (const std::string& name : files_.Matching(folder, pattern)) {
    if (!IsKept(folder + name)) base::Ignored(files_.RemoveUnlessHeld(folder + name));
  }
}

bool SongFiles::IsKept(std::string_view path) const {
  return files_.Exists(path) &&
         (leftoversSpared_ || std::find(kept_.begin(), kept_.end(), path) != kept_.end());
}

}  // namespace kestrune::recorder
