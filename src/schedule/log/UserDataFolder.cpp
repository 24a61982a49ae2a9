#include "schedule/log/UserDataFolder.h"

#include "base/Ignored.h"

namespace kestrune::schedule {

std::string UserDataFolder(const platform::Environment& environment) {
  const std::string profile = environment.Variable("userprofile");
  return profile.empty() ? environment.ExecutableFolder() : profile + "/Application Data/Kestrune";
}

std::string MakeUserDataFolder(platform::Files& files, const platform::Environment& environment) {
  std::string folder = UserDataFolder(environment);
  if (!files.Exists(folder)) base::Ignored(files.MakeOwnFolder(folder));
  return folder;
}

void CloseUserDataFolder(platform::Files& files, const platform::Environment& environment) {
  if (environment.Variable("userprofile").empty()) return;
  base::Ignored(files.MakeOwnFolder(UserDataFolder(environment)));
}

}  // namespace kestrune::schedule
