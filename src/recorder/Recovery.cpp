#include "recorder/Recovery.h"

#include <algorithm>
#include <cstdint>

#include <fmt/format.h>

#include "base/DatePattern.h"
#include "base/Ignored.h"
#include "base/PathText.h"
#include "base/Text.h"
#include "config/formats/FormatTable.h"
#include "recorder/SongName.h"

namespace kestrune::recorder {
namespace {

constexpr std::string_view kTemporary = "Capture";
constexpr std::size_t kMostDigits = 3;
constexpr int kMostOfAName = 9999;
constexpr std::int64_t kSecondMs = 1000;

bool IsFormat(std::string_view extension) {
  const std::vector<std::string_view> codes = config::FileFormats();
  return std::any_of(codes.begin(), codes.end(),
                     [&](std::string_view code) { return base::ToLower(code) == extension; });
}

}  // namespace

bool IsTemporaryName(std::string_view name, std::string_view multiUnit) {
  if (!name.starts_with(kTemporary)) return false;
  name.remove_prefix(kTemporary.size());
  const std::size_t digits = std::min(name.find_first_not_of("0123456789"), name.size());
  if (digits == 0 || digits > kMostDigits) return false;
  name.remove_prefix(digits);
  if (!multiUnit.empty()) {
    if (!name.starts_with('-') || !name.substr(1).starts_with(multiUnit)) return false;
    name.remove_prefix(1 + multiUnit.size());
  }
  return name.starts_with('.') && IsFormat(name.substr(1));
}

Recovery::Recovery(const State& state, platform::CaptureMender& mender, platform::Files& files,
                   SongFiles& songFiles, base::Journal& journal)
    : settings_(state.Settings), mender_(mender), files_(files), songFiles_(songFiles), journal_(journal) {}

void Recovery::Start(const std::string& multiUnit) {
  if (!settings_.Watch) return;
  multiUnit_ = multiUnit;
  fileDir_ = settings_.FileDir;
  songFiles_.SpareLeftovers(true);
  mender_.Find(
      fileDir_, std::string(kTemporary) + "*",
      [this](const std::vector<std::string>& paths, const base::Result& looked) { Found(paths, looked); });
}

void Recovery::Stop() {
  waiting_.clear();
  mender_.Stop();
}

void Recovery::Found(const std::vector<std::string>& paths, const base::Result& looked) {
  allFound_ = looked.Ok();
  if (!allFound_) {
    journal_.DoLog(
        fmt::format("Cannot look for captures of an earlier run in \"{}\": {}; what is there stays", fileDir_,
                    looked.Cause()));
  }
  for (const std::string& path : paths) {
    if (IsTemporaryName(std::string_view(path).substr(path.rfind('/') + 1), multiUnit_))
      waiting_.push_back(path);
  }
  MendNext();
}

void Recovery::MendNext() {
  if (waiting_.empty()) {
    mender_.Stop();
    // A capture that was not found is no file to be written over.
    if (allFound_) songFiles_.SpareLeftovers(false);
    return;
  }
  const std::string path = waiting_.front();
  waiting_.pop_front();
  mender_.Mend(path, [this, path](const platform::MendedCapture& mended) {
    Settle(path, mended);
    MendNext();
  });
}

void Recovery::Settle(const std::string& path, const platform::MendedCapture& mended) {
  using Fate = platform::MendedCapture::State;
  // Whoever holds it may leave it behind.
  if (mended.Is == Fate::Untouched) return songFiles_.Keep(path);
  if (mended.Is == Fate::Empty) return base::Ignored(files_.Remove(path));
  const std::string place = MoveAway(path, mended);
  if (mended.Is == Fate::Not) {
    journal_.DoLog(
        fmt::format("Cannot mend a capture of a run that ended without closing it, kept as \"{}\": {}", place,
                    mended.Cause));
    return;
  }
  const std::string length =
      mended.LengthMs < 0 ? "" : fmt::format(" ({})", FormatSeconds(mended.LengthMs / kSecondMs));
  journal_.DoLog(fmt::format("Recovered \"{}\"{} from a run that ended without closing it", place, length));
}

std::string Recovery::MoveAway(const std::string& path, const platform::MendedCapture& mended) {
  const std::string byTime = "Recovered " + base::FormatDate(mended.Written, "yyyy-mm-dd hh-nn-ss");
  const std::string extension = base::ExtensionOf(path);
  const std::string root = fileDir_ + (fileDir_.ends_with('/') ? "" : "/");
  const bool named = !mended.Artist.empty() || !mended.Title.empty();
  const SongName name = BuildSongName(
      named ? "%a - %s" : byTime, root + "Recovered", extension,
      {.Artist = mended.Artist, .Song = mended.Title, .Station = {}, .Genre = {}, .SessionStart = {}});
  songFiles_.MakeFolder(name.Folder);
  // The folder of recordings may reach over several disks: then the file stays in its own folder.
  for (const std::string& place :
       {name.FileName, base::FolderOf(path) + name.FileName.substr(name.Folder.size())}) {
    std::string renamed = Rename(path, place);
    if (renamed.empty()) continue;
    songFiles_.Sync(renamed);
    return renamed;
  }
  // No capture of this run takes its place.
  songFiles_.Keep(path);
  return path;
}

std::string Recovery::Rename(const std::string& path, const std::string& name) {
  for (int number = 1; number <= kMostOfAName; ++number) {
    std::string target =
        name + (number == 1 ? "" : fmt::format(" ({})", number)) + "." + base::ExtensionOf(path);
    const platform::RenameResult moved = files_.RenameNoReplace(path, target);
    if (moved) return target;
    if (!moved.NameTaken) break;
  }
  return {};
}

}  // namespace kestrune::recorder
