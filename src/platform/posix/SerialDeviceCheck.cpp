#include "platform/posix/SerialDeviceCheck.h"

#include <cerrno>
#include <cstring>
#include <string_view>
#include <vector>

#include <fcntl.h>
#include <fmt/format.h>
#include <grp.h>
#include <pwd.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include "platform/posix/DeviceHolder.h"

namespace kestrune::platform {
namespace {

// Devices are opened on several threads, so each look-up has a buffer of its own.
constexpr std::size_t kEntryBuffer = 65536;

std::string UserName() {
  passwd entry{};
  passwd* user = nullptr;
  std::string buffer(kEntryBuffer, '\0');
  ::getpwuid_r(::geteuid(), &entry, buffer.data(), buffer.size(), &user);
  return user != nullptr ? user->pw_name : std::to_string(::geteuid());
}

bool ListsUser(const group& group, std::string_view user) {
  for (char** member = group.gr_mem; *member != nullptr; ++member) {
    if (user == *member) return true;
  }
  return false;
}

std::string WithoutPermission(const std::string& path, const struct stat& status) {
  constexpr mode_t kGroupMayUse = S_IRGRP | S_IWGRP;
  struct group entry {};
  struct group* owner = nullptr;
  std::string buffer(kEntryBuffer, '\0');
  ::getgrgid_r(status.st_gid, &entry, buffer.data(), buffer.size(), &owner);
  if (owner == nullptr || (status.st_mode & kGroupMayUse) != kGroupMayUse) {
    return fmt::format("there is no permission to use {}, and no group that has it", path);
  }
  const std::string user = UserName();
  const std::string_view group = owner->gr_name;
  if (ListsUser(*owner, user)) {
    return fmt::format(
        "there is no permission to use {} yet; {} is in the group {}, but this session began before: log out "
        "and "
        "in again",
        path, user, group);
  }
  return fmt::format(
      "there is no permission to use {}; it belongs to the group {}: type \"sudo usermod -aG {} {}\" in a "
      "terminal, then log out and in again",
      path, group, group, user);
}

}  // namespace

base::Result CheckSerialDevice(const std::string& path) {
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0) {
    if (errno == ENOENT || errno == ENOTDIR) {
      return base::Result::Failed(fmt::format("there is no device {}; is the radio plugged in?", path));
    }
    return base::Result::Failed(fmt::format("{} cannot be used: {}", path, std::strerror(errno)));
  }
  // Memory devices (major 1: null, zero, random, ...) are the character devices that are surely no lines.
  constexpr unsigned kMemoryDevices = 1;
  if (!S_ISCHR(status.st_mode) || major(status.st_rdev) == kMemoryDevices) {
    return base::Result::Failed(fmt::format("{} is not a serial device", path));
  }
  if (::faccessat(AT_FDCWD, path.c_str(), R_OK | W_OK, AT_EACCESS) != 0) {
    return base::Result::Failed(WithoutPermission(path, status));
  }
  const DeviceHolder holder = FindDeviceHolder(path);
  if (holder.ProcessId == 0) return base::Result::Done();
  if (holder.ProcessId == ::getpid()) {
    return base::Result::Failed(fmt::format("{} is in use by this program already ({}, process {})", path,
                                            holder.Name, holder.ProcessId));
  }
  return base::Result::Failed(fmt::format("{} is in use by {} (process {}); close that program first", path,
                                          holder.Name, holder.ProcessId));
}

std::string WhoMayHoldSerialDevice() {
  const std::vector<std::string> services = RunningLineServices();
  if (services.empty()) return {};
  return fmt::format(
      "; {} {} here and may hold it, and docs/headless.md explains how to keep such services away",
      fmt::join(services, " and "), services.size() == 1 ? "runs" : "run");
}

}  // namespace kestrune::platform
