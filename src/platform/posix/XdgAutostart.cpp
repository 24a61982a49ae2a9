#include "platform/posix/XdgAutostart.h"

#include <cctype>
#include <cerrno>
#include <cstdint>
#include <map>
#include <optional>
#include <string_view>

#include <fmt/format.h>
#include <unistd.h>

#include "platform/posix/DesktopEntry.h"
#include "platform/posix/FileNames.h"
#include "platform/posix/PosixFiles.h"

namespace kestrune::platform {
namespace {

constexpr std::string_view kMark = "X-Kestrune-Autostart";

std::string KeyOf(const std::map<std::string, std::string>& keys, std::string_view key) {
  const auto found = keys.find(std::string(key));
  return found == keys.end() ? std::string() : found->second;
}

/// Whether what the value of a TryExec names is gone; only of a full path it can be told.
bool Gone(std::string_view value) {
  const std::string program = TextOfDesktopEntry(value);
  return program.starts_with('/') && ::access(program.c_str(), X_OK) != 0;
}

/// Short, and the same for the same text at each start.
std::uint32_t Digest(std::string_view text) {
  std::uint32_t digest = 2166136261U;
  for (const char letter : text) {
    digest = (digest ^ static_cast<unsigned char>(letter)) * 16777619U;
  }
  return digest;
}

}  // namespace

std::string XdgAutostart::File() const {
  return fmt::format("{}/autostart/{}.desktop", start_.Configuration, start_.Name);
}

AutostartState XdgAutostart::Read() const {
  const PosixFiles files;
  const std::optional<std::string> text = files.Read(File());
  // What cannot be read may be anybody's.
  if (!text) return {.Starts = false, .Foreign = files.Exists(File())};
  const std::map<std::string, std::string> keys = DesktopEntryKeys(*text);
  const bool off = KeyOf(keys, "Hidden") == "true" || KeyOf(keys, "X-GNOME-Autostart-enabled") == "false";
  const bool starts = !off && !KeyOf(keys, "Exec").empty() && !Gone(KeyOf(keys, "TryExec"));
  return {.Starts = starts, .Foreign = KeyOf(keys, kMark) != "true"};
}

base::Result XdgAutostart::Enable() {
  std::vector<std::string> command{start_.Program};
  command.insert(command.end(), start_.Words.begin(), start_.Words.end());
  if (!MakeFolders(start_.Configuration + "/autostart", kOwnFolder)) {
    return base::Result::Failed("the folder \"" + start_.Configuration + "/autostart\" cannot be made");
  }
  return PosixFiles().Replace(
      File(), fmt::format("[Desktop Entry]\n"
                          "Type=Application\n"
                          "Version=1.4\n"
                          "Name=Kestrune\n"
                          "Comment=Record satellite radio, one file a song\n"
                          "Exec={}\n"
                          "TryExec={}\n"
                          "Icon=kestrune\n"
                          "Terminal=false\n"
                          "{}=true\n",
                          DesktopEntryCommand(command), DesktopEntryText(start_.Program), kMark));
}

base::Result XdgAutostart::Disable() {
  PosixFiles files;
  const base::Result removed = files.Remove(File());
  return files.Exists(File()) ? removed : base::Result::Done();
}

std::string AutostartName(const std::string& unit, const std::string& profile) {
  std::string name = "kestrune";
  if (!unit.empty()) {
    const bool plain = unit.size() == 1 && std::isalnum(static_cast<unsigned char>(unit.front())) != 0;
    name += '-' + (plain ? unit : fmt::format("{:08x}", Digest(unit)));
  }
  if (!profile.empty()) name += fmt::format("-{:08x}", Digest(profile));
  return name;
}

}  // namespace kestrune::platform
