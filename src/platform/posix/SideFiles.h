#pragma once

#include <string>
#include <string_view>

namespace kestrune::platform {

/// The folder of the files that are installed with the program, relative to the folder of its executable, so that an
/// installation can be moved as a whole.
extern const std::string_view kSharedFolder;

/// Where to find a file that belongs to the program, such as "\Documentation\Kestrune.html" or "Agreement.html":
/// in the folder of the executable if it is there, as in the build, else in the shared folder. If it is in
/// neither, the answer is its path in the folder of the executable, and opening that fails as it should.
[[nodiscard]] std::string SideFile(std::string_view executableFolder, std::string_view name,
                                   std::string_view sharedFolder = kSharedFolder);

}  // namespace kestrune::platform
