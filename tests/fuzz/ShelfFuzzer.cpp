// The shelf's folders may hold files of any name and size, with the hidden mark or without it, and others may change them at
// any time. Each line of the input is a step. Whatever they are, nothing goes but songs from folders with the mark, nothing is
// replaced, nothing comes into a folder of others, and afterwards no more lies there than the bounds allow.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <set>
#include <string>
#include <string_view>

#include "base/Ignored.h"
#include "base/PathText.h"
#include "base/Text.h"
#include "shelf/Shelf.h"
#include "support/MemoryFiles.h"

namespace {

using namespace kestrune;

const std::string kWished = "/disk/shelf/";
const std::string kBeside = "/disk/music/Kestrune/Shelf/";
const std::string kMark = ".kestrune-shelf";
const std::string kCapture = "/disk/music/capture.tmp";
constexpr double kFree = 100;

void Require(bool holds) {
  if (!holds) std::abort();
}

class Run {
 public:
  Run() {
    files_.FilledFolder = "/disk";
    files_.Free = 1000;
    Open();
  }

  void Take(const std::string& line) {
    const char kind = line.empty() ? ' ' : line.front();
    const std::string rest = line.empty() ? line : line.substr(1);
    if (Others(kind, rest)) return;
    const std::map<std::string, std::string> before = Contents();
    const std::set<std::string> ours{Ours(kWished), Ours(kBeside)};
    const std::set<std::string> foreign{Foreign(kWished), Foreign(kBeside)};
    if (kind == 'p') files_.Put(kCapture, rest);
    Program(kind, rest);
    base::Ignored(files_.Remove(kCapture));
    const std::map<std::string, std::string> after = Contents();
    for (const auto& [path, text] : after) {
      // That of an earlier step may still be there: a removal that fails also fails here.
      if (path == kCapture) continue;
      const auto was = before.find(path);
      if (was == before.end()) Require(!foreign.contains(base::FolderOf(path)));
      if (was != before.end()) Require(was->second == text);
    }
    for (const auto& [path, text] : before) {
      if (after.contains(path) || path == kCapture) continue;
      Require(ours.contains(base::FolderOf(path)));
      Require(path.ends_with(".mp3") || path.ends_with(".flac"));
    }
    RequireBooks();
  }

 private:
  [[nodiscard]] std::map<std::string, std::string> Contents() const {
    std::map<std::string, std::string> contents;
    for (const std::string& path : files_.AllFiles()) contents[path] = files_.Text(path);
    return contents;
  }
  /// The folder if it has the mark, if not, nothing.
  [[nodiscard]] std::string Ours(const std::string& folder) const {
    return files_.Exists(folder + kMark) ? folder : std::string();
  }
  /// The folder if it has files and no mark, if not, nothing.
  [[nodiscard]] std::string Foreign(const std::string& folder) const {
    return Ours(folder).empty() && !files_.List(folder).empty() ? folder : std::string();
  }

  void Open() { shelf_.Open({.Wished = kWished, .BesideRecordings = kBeside}, {"mp3", "flac"}); }

  void PutFile(const std::string& folder, const std::string& text) {
    const std::string name = base::NameOf(text);
    // A file system has no other names.
    if (!name.empty() && name != "." && name != "..") files_.Put(folder + name, text);
  }

  /// What others do; false if the step is none of theirs.
  bool Others(char kind, const std::string& rest) {
    switch (kind) {
      case 'f':
        PutFile(kWished, rest);
        return true;
      case 'g':
        PutFile(kBeside, rest);
        return true;
      case 'm':
        files_.Put((rest.empty() ? kWished : kBeside) + kMark, rest);
        return true;
      case 'r':
        if (shelf_.Songs().empty()) return true;
        base::Ignored(files_.Remove(shelf_.Songs().back().Path));
        othersRemoved_ = true;
        return true;
      case 'u':
        if (!shelf_.Songs().empty()) files_.OpenByAnother(shelf_.Songs().back().Path, rest.empty());
        return true;
      case 'v':
        files_.PutOnOtherVolume(kWished);
        return true;
      case 'x':
        files_.FailNext(rest.empty() ? test::FileOperation::Rename : test::FileOperation::CreateFolder);
        return true;
      case 'y':
        files_.FailNext(test::FileOperation::Remove);
        removeFails_ = true;
        return true;
      case 'd':
        files_.Free = 200 + static_cast<double>(rest.size()) * 10;
        return true;
      case 'b':
        bounds_ = {.Songs = rest.size() % 5,
                   .Bytes = static_cast<std::int64_t>(rest.size()) * 4,
                   .FreeBytes = rest.ends_with('!') ? kFree : 0};
        return true;
      default:
        return false;
    }
  }

  void Program(char kind, const std::string& rest) {
    switch (kind) {
      case 'o':
        Open();
        othersRemoved_ = false;
        break;
      case 'c':
        shelf_.Close();
        Require(shelf_.Songs().empty());
        break;
      case 't':
        shelf_.Trim(bounds_);
        Require(IsWithin() || NothingCanGo());
        break;
      case 'k':
        if (shelf_.KeepFree(kFree)) {
          const double free = files_.FreeBytes("/disk");
          // Below 0 means that it is not known.
          Require(free >= kFree || free < 0 || othersRemoved_);
        } else {
          Require(NothingCanGo());
        }
        break;
      case 'l':
        shelf_.Follow();
        othersRemoved_ = false;
        for (const shelf::ShelvedSong& song : shelf_.Songs()) Require(files_.Exists(song.Path));
        break;
      case 'w':
        if (!shelf_.Songs().empty())
          Give(shelf_.Songs().front().Path, "/disk/music/" + base::NameOf(rest) + ".mp3");
        break;
      case 'p':
        Put(rest);
        break;
      default:
        break;
    }
  }

  void Give(const std::string& song, const std::string& target) {
    const bool taken = files_.Exists(target);
    const std::string text = files_.Text(song);
    if (!shelf_.Give(song, target)) return;
    Require(!taken && files_.Text(target) == text);
  }

  void Put(const std::string& text) {
    // The recorder's names of songs have no folders.
    std::string name = text;
    std::replace(name.begin(), name.end(), '/', '_');
    if (!shelf_.Put(kCapture, name, "mp3", {}, bounds_)) {
      Require(files_.Text(kCapture) == text);
      return;
    }
    const std::string& path = shelf_.Songs().front().Path;
    Require(files_.Text(path) == text && !files_.Exists(kCapture));
    Require(base::NameOf(path).starts_with(name));
    Require(IsWithin() || removeFails_);
  }

  [[nodiscard]] bool IsWithin() const {
    return shelf_.Songs().size() <= bounds_.Songs && shelf_.Bytes() <= bounds_.Bytes;
  }
  [[nodiscard]] bool NothingCanGo() const {
    return removeFails_ || std::all_of(shelf_.Songs().begin(), shelf_.Songs().end(),
                                       [this](const auto& song) { return files_.InUse(song.Path); });
  }

  /// Each song lies in one of its folders, once, and the bytes are theirs.
  void RequireBooks() const {
    std::int64_t bytes = 0;
    std::set<std::string> paths;
    for (const shelf::ShelvedSong& song : shelf_.Songs()) {
      const std::string folder = base::FolderOf(song.Path);
      Require(folder == kWished || folder == kBeside);
      Require(paths.insert(song.Path).second);
      bytes += song.Bytes;
    }
    Require(bytes == shelf_.Bytes());
  }

  test::MemoryFiles files_;
  shelf::Bounds bounds_{.Songs = 3, .Bytes = 100, .FreeBytes = 0};
  bool removeFails_ = false;    // now and then
  bool othersRemoved_ = false;  // a song that the shelf counts still
  shelf::Shelf shelf_{files_, [this](const std::string& path) { Require(!files_.Exists(path)); }};
};

/// Nothing comes into a song's fields that its name does not have.
void RequireOfTheName(std::string_view name) {
  shelf::ShelvedSong song;
  shelf::ReadName(name, song);
  Require(song.Artist.find(" - ") == std::string::npos);
  Require(name.find(song.Artist) != std::string_view::npos &&
          name.find(song.Title) != std::string_view::npos);
  Require(!song.Incomplete || name.find(shelf::kIncompleteSuffix) != std::string_view::npos);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Run run;
  int steps = 0;
  for (const std::string& line : base::Split(std::string(data, data + size), '\n')) {
    RequireOfTheName(line);
    if (++steps <= 60) run.Take(line);
  }
  return 0;
}
