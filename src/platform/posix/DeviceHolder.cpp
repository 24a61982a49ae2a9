#include "platform/posix/DeviceHolder.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string_view>

#include <sys/stat.h>
#include <sys/sysmacros.h>

namespace kestrune::platform {
namespace {

namespace fs = std::filesystem;

int ProcessIdOf(const std::string& name) {
  int id = 0;
  const char* const nameEnd = name.data() + name.size();
  const auto [end, error] = std::from_chars(name.data(), nameEnd, id);
  return error == std::errc{} && end == nameEnd ? id : 0;
}

/// A device that has been looked up.
struct Device {
  fs::path Path;
  dev_t System = 0;  // the file system of its name
  dev_t Number = 0;
};

/// Containers have terminals of their own, with the names and numbers of ours; only the file system of the names differs. A
/// real line is the same device wherever its name is.
bool IsSame(const Device& device, const fs::path& openFile) {
  struct stat status {};
  if (::stat(openFile.c_str(), &status) != 0 || status.st_rdev != device.Number) return false;
  constexpr unsigned kFirstTerminal = 136;  // the major numbers of pseudo-terminals
  constexpr unsigned kLastTerminal = 143;
  const bool terminal = major(device.Number) >= kFirstTerminal && major(device.Number) <= kLastTerminal;
  return !terminal || status.st_dev == device.System;
}

/// Processes come and go while they are looked at, and those of others cannot be looked into: each failure just
/// means "no". Only a file of the right name is asked more, since asking can take long on a file system that is gone.
bool HasOpen(const fs::path& process, const Device& device) {
  std::error_code error;
  for (fs::directory_iterator file(process / "fd", error), end; !error && file != end;
       file.increment(error)) {
    std::error_code unreadable;
    if (fs::read_symlink(file->path(), unreadable) == device.Path && !unreadable &&
        IsSame(device, file->path()))
      return true;
  }
  return false;
}

std::string NameOf(const fs::path& process) {
  std::ifstream comm(process / "comm");
  const std::string text{std::istreambuf_iterator<char>(comm), std::istreambuf_iterator<char>()};
  return ProcessNameIn(text);
}

}  // namespace

std::string ProcessNameIn(std::string_view comm) {
  if (comm.ends_with('\n')) comm.remove_suffix(1);
  std::string name(comm);
  std::replace_if(
      name.begin(), name.end(), [](char letter) { return letter < 0x20 || letter > 0x7E; }, '?');
  return name;
}

DeviceHolder FindDeviceHolder(const std::string& path) {
  std::error_code error;
  Device device{.Path = fs::canonical(path, error)};
  struct stat status {};
  if (error || ::stat(device.Path.c_str(), &status) != 0) return {};
  device.System = status.st_dev;
  device.Number = status.st_rdev;
  for (fs::directory_iterator process("/proc", error), end; !error && process != end;
       process.increment(error)) {
    const int id = ProcessIdOf(process->path().filename().string());
    if (id == 0 || !HasOpen(process->path(), device)) continue;
    return {id, NameOf(process->path())};
  }
  return {};
}

std::vector<std::string> RunningLineServices() {
  constexpr std::array<std::string_view, 3> kServices{"ModemManager", "brltty", "gpsd"};
  std::vector<std::string> running;
  std::error_code error;
  for (fs::directory_iterator process("/proc", error), end; !error && process != end;
       process.increment(error)) {
    if (ProcessIdOf(process->path().filename().string()) == 0) continue;
    std::string name = NameOf(process->path());
    const bool counts = std::find(kServices.begin(), kServices.end(), name) != kServices.end();
    if (counts && std::find(running.begin(), running.end(), name) == running.end()) {
      running.push_back(std::move(name));
    }
  }
  std::sort(running.begin(), running.end());
  return running;
}

}  // namespace kestrune::platform
