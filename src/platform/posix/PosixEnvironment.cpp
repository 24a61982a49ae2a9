#include "platform/posix/PosixEnvironment.h"

#include <array>
#include <climits>
#include <cstdlib>
#include <utility>

#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include "base/Ignored.h"
#include "platform/posix/FileNames.h"
#include "platform/posix/PosixFiles.h"
#include "platform/posix/RuntimeFolder.h"
#include "platform/posix/UserFolders.h"

namespace kestrune::platform {

namespace {

constexpr mode_t kShared = 0777;

std::string RealPath(const std::string& path) {
  std::array<char, PATH_MAX> real{};
  return ::realpath(path.c_str(), real.data()) == nullptr ? std::string() : std::string(real.data());
}

std::string VariableText(const std::string& name) {
  const char* text = std::getenv(name.c_str());
  return text == nullptr ? std::string() : std::string(text);
}

/// A folder that a variable names; the desktop's conventions ignore one that does not begin at the root.
std::string FolderVariable(const std::string& name) {
  const std::string path = WithoutEndSeparator(VariableText(name));
  return path.starts_with('/') ? path : std::string();
}

std::string FindExecutableFolder(const std::string& path) {
  const bool namesFolder = path.find('/') != std::string::npos;
  std::string real = RealPath(namesFolder ? path : "/proc/self/exe");
  if (real.empty()) real = RealPath("/proc/self/exe");
  return real.empty() ? "." : FolderOf(real);
}

/// Makes the folder if need be, and checks that it is a folder and no link, belongs to this user, and is closed to
/// everybody else.
bool MakePrivate(const std::string& path) {
  base::Ignored(::mkdir(path.c_str(), kOwnFolder));
  struct stat status {};
  if (::lstat(path.c_str(), &status) != 0) return false;
  if (!S_ISDIR(status.st_mode) || status.st_uid != ::geteuid()) return false;
  return (status.st_mode & 0777U) == kOwnFolder || ::chmod(path.c_str(), kOwnFolder) == 0;
}

}  // namespace

PosixEnvironment::PosixEnvironment(StartArguments arguments)
    : executableFolder_(FindExecutableFolder(arguments.ExecutablePath)),
      commandLine_(std::move(arguments.CommandLine)),
      profileFolder_(std::move(arguments.ProfileFolder)) {
  if (!profileFolder_) return;
  // The whole path, so that a later change of the working folder does not move the profile.
  base::Ignored(MakeFolders(*profileFolder_, kOwnFolder));
  const std::string real = RealPath(*profileFolder_);
  if (!real.empty()) profileFolder_ = real;
}

std::string PosixEnvironment::InProfile(std::string_view name) const {
  std::string path = fmt::format("{}/{}", *profileFolder_, name);
  // Whoever uses the folder notices if it is missing.
  base::Ignored(MakeFolders(path, kOwnFolder));
  return path;
}

std::string PosixEnvironment::Variable(std::string_view name) const {
  const bool home = name == "userprofile";
  const bool temporary = name == "temp" || name == "Temp";
  if (profileFolder_ && home) return InProfile("home");
  if (profileFolder_ && temporary) return InProfile("tmp");
  const auto systemName = SystemPath(name);
  std::string value = systemName ? VariableText(*systemName) : std::string();
  if (home) return value.empty() ? WithoutEndSeparator(VariableText("HOME")) : WithoutEndSeparator(value);
  if (!temporary) return value;
  if (!value.empty()) return WithoutEndSeparator(value);
  const std::string system = FolderVariable("TMPDIR");
  return system.empty() ? "/tmp" : system;
}

std::string PosixEnvironment::Home() const {
  const std::string home = WithoutEndSeparator(VariableText("HOME"));
  return home.empty() ? executableFolder_ : home;
}

std::string PosixEnvironment::ConfigurationFolder() const {
  const std::string folder = FolderVariable("XDG_CONFIG_HOME");
  return folder.empty() ? Home() + "/.config" : folder;
}

std::string PosixEnvironment::MusicFolder() const {
  const auto list = PosixFiles().Read(ConfigurationFolder() + "/user-dirs.dirs");
  const std::string listed = list ? MusicFolderIn(*list, Home()) : std::string();
  return listed.empty() ? Home() + "/Music" : listed;
}

std::string PosixEnvironment::DefaultRecordingFolder() const {
  if (profileFolder_) return InProfile("Music/Kestrune");
  std::string folder = MusicFolder() + "/Kestrune";
  base::Ignored(MakeFolders(folder, kShared));
  return folder;
}

std::string PosixEnvironment::SettingsFolder() const {
  return profileFolder_ ? InProfile("config") : ConfigurationFolder() + "/kestrune";
}

std::string PosixEnvironment::RuntimeFolder() const {
  const std::string folder = RuntimeFolderPath(profileFolder_.value_or(""));
  if (profileFolder_) base::Ignored(MakeFolders(folder, kOwnFolder));
  return MakePrivate(folder) ? folder : std::string();
}

}  // namespace kestrune::platform
