#include "apps/kestrune/StartDesktop.h"

#include <cerrno>
#include <cstring>

#include <fmt/format.h>
#include <unistd.h>

#include "apps/kestrune/RunUnit.h"
#include "base/Ignored.h"
#include "platform/posix/PosixEnvironment.h"
#include "platform/posix/SideFiles.h"

namespace kestrune::apps {

int StartDesktop(const std::string& executable, const std::vector<std::string>& words) {
  const std::string folder =
      platform::PosixEnvironment({.ExecutablePath = executable, .CommandLine = {}, .ProfileFolder = {}})
          .ExecutableFolder();
  // It finds what belongs to the program from the folder of its name, which is therefore given as a whole.
  std::vector<std::string> all{folder + "/kestrune"};
  all.insert(all.end(), words.begin(), words.end());
  std::vector<char*> pointers;
  pointers.reserve(all.size() + 1);
  for (std::string& word : all) pointers.push_back(word.data());
  pointers.push_back(nullptr);
  const std::string program = platform::SideFile(folder, "kestrune-desktop", KESTRUNE_PROGRAM_FOLDER);
  base::Ignored(::execv(program.c_str(), pointers.data()));
  Say(errno == ENOENT
          ? "this installation has no windows (on Debian, the package \"kestrune\" has them); start it "
            "with --headless to run without"
          : fmt::format("the windows cannot be started: {}: {}", program, std::strerror(errno)));
  return kFailed;
}

}  // namespace kestrune::apps
