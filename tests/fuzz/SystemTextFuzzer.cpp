// Texts of the system: the desktop's list of user folders, the name that a process gave itself, and the status that the
// service manager is given, with what the radio says in it. Any text may be any of them.

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "base/Text.h"
#include "platform/posix/DeviceHolder.h"
#include "platform/posix/NotifyText.h"
#include "platform/posix/UserFolders.h"

namespace {

using namespace kestrune;

void Require(bool holds) {
  if (!holds) std::abort();
}

/// As the desktop's own tool writes a folder.
std::string ListOf(std::string_view folder) {
  std::string list = "# folders\nXDG_MUSIC_DIR=\"";
  for (const char letter : folder) {
    if (std::string_view("\"`$\\").find(letter) != std::string_view::npos) list += '\\';
    list += letter;
  }
  return list + "\"\nXDG_VIDEOS_DIR=\"$HOME/Videos\"\n";
}

void ReadFolders(const std::string& text) {
  const std::string folder = platform::MusicFolderIn(text, "/home/user");
  Require(folder.empty() || folder.starts_with('/'));
  Require(folder.size() <= 1 || !folder.ends_with('/'));
  Require(folder.find('\n') == std::string::npos);
  Require(folder.size() <= text.size() + std::string_view("/home/user").size());

  const std::string line = base::Split(text, '\n').front();
  const std::string rooted = "/" + line;
  Require(platform::MusicFolderIn(ListOf(rooted), "") == platform::WithoutEndSeparator(rooted));
  // What is not below the root is none.
  if (!line.starts_with('/')) Require(platform::MusicFolderIn(ListOf(line), "/home/user").empty());
}

void ReadName(std::string_view text) {
  const std::string name = platform::ProcessNameIn(text);
  Require(name.size() <= text.size());
  Require(
      std::all_of(name.begin(), name.end(), [](char letter) { return letter >= 0x20 && letter <= 0x7E; }));
  Require(platform::ProcessNameIn(name) == name);
}

void Tell(const std::string& status) {
  const std::string told = platform::NotifyText({.Ready = true,
                                                 .Stopping = true,
                                                 .Alive = true,
                                                 .MoreTime = std::chrono::seconds(1),
                                                 .Status = status});
  const std::vector<std::string> lines = base::Lines(told);
  const std::vector<std::string> wanted{"READY=1", "STOPPING=1", "WATCHDOG=1", "EXTEND_TIMEOUT_USEC=1000000"};
  Require(lines.size() == (status.empty() ? 4U : 5U));
  Require(std::equal(wanted.begin(), wanted.end(), lines.begin()));
  Require(status.empty() || lines.back().starts_with("STATUS="));
  Require(status.empty() || lines.back().size() == status.size() + std::string_view("STATUS=").size());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(data, data + size);
  ReadFolders(text);
  ReadName(text);
  Tell(text);
  return 0;
}
