#include "schedule/log/UserDataFolder.h"

#include "base/Ignored.h"

namespace kestrune::schedule {

std::string UserDataFolder(const platform::Environment& environment) {
  const std::string profile = environment.Variable("userprofile");
  return profile.empty() ? environment.ExecutableFolder() : profile + "/Application Data/Kestrune";
}

std::string MakeUserDataFolder(platform::Files& files, const platform::Environment& environment) {
  std::string folder = UserDataFolder(environment);
  if (files.Exists(folder)) return folder;
  for (auto slash = folder.find('/', 1); slash != std::string::npos; slash = folder.find('/', slash + 1)) {
    const std::string parent = folder.substr(0, slash);
    if (!files.Exists(parent)) base::Ignored(files.CreateFolder(parent));
  }
  base::Ignored(files.CreateFolder(folder));
  return folder;
}

}  // namespace kestrune::schedule
