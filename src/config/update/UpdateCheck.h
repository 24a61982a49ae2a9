#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "base/EventLoop.h"
#include "base/RunState.h"
#include "platform/Environment.h"
#include "platform/Files.h"
#include "platform/Web.h"

namespace kestrune::config {

/// What CheckNewVersion found.
inline constexpr std::int16_t kUpToDate = 0;
inline constexpr std::int16_t kNewerVersion = 1;
inline constexpr std::int16_t kNotRetrieved = 2;

/// Asks the maker's server for the latest version, and fetches its installer. Both serve events while they wait,
/// and wait no longer once the program closes. Failures show in the results, and nowhere else.
class UpdateCheck {
 public:
  UpdateCheck(platform::Web& web, platform::Files& files, const platform::Environment& environment,
              base::EventLoop& loop, const base::RunState& run);

  /// Whether there is a server to ask.
  [[nodiscard]] bool HasServer() const;

  /// `downloadAddress` is that of the installer if there is a newer version, else empty. A text that is no version
  /// file counts as not retrieved.
  void CheckNewVersion(std::string& downloadAddress, std::int16_t& result) const;
  /// Downloads a file into a new folder inside the temporary one, closed to other users. `localFile` is the path
  /// that the file was to have, whether or not it could be written. It is empty if there was nothing to download,
  /// the folder could not be made, the program closes, or the installer would have come unencrypted although the
  /// version file came encrypted.
  void UpdateEXE(std::string_view downloadAddress, std::string& localFile) const;
  /// Removes what UpdateEXE has downloaded, with its folder.
  void RemoveDownload(std::string_view localFile) const;

 private:
  [[nodiscard]] std::string FetchVersionFile() const;

  platform::Web& web_;
  platform::Files& files_;
  const platform::Environment& environment_;
  base::EventLoop& loop_;
  const base::RunState& run_;
};

}  // namespace kestrune::config
