#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

#include <sys/stat.h>

#include "platform/SettingsStore.h"
#include "platform/posix/FileDescriptor.h"
#include "platform/posix/IniText.h"

namespace kestrune::platform {

/// Settings in one text file per application. Each write takes a lock that all units share, reads the file
/// anew, changes the one key in it and puts the file in place as a whole; a read loads the file again if
/// another process has written it. A file that cannot be read gives defaults and is not overwritten.
class IniSettingsStore final : public SettingsStore {
 public:
  /// The folder is made with the first write if it is missing.
  explicit IniSettingsStore(std::string folder);

  [[nodiscard]] std::string GetSetting(std::string_view application, std::string_view section,
                                       std::string_view key, std::string_view defaultText) override;
  [[nodiscard]] bool SaveSetting(std::string_view application, std::string_view section, std::string_view key,
                                 std::string_view value) override;
  [[nodiscard]] bool DeleteSetting(std::string_view application, std::string_view section,
                                   std::string_view key) override;

  /// The settings file of an application.
  [[nodiscard]] std::string FileOf(std::string_view application) const;

 private:
  /// What was last read of a file. The file is kept open, so that no later file can be taken
  /// for it.
  struct KnownFile {
    FileDescriptor Open;
    struct stat Status {};
    IniText Content;
  };

  /// The file as it is now; null if it cannot be read. A file that is absent is empty. Values are still given as they
  /// were last read while the file cannot be read, but then nothing is written.
  [[nodiscard]] const IniText* Current(const std::string& path);
  [[nodiscard]] FileDescriptor Lock(const std::string& path) const;
  [[nodiscard]] static bool Write(const std::string& path, const IniText& content);

  std::string folder_;
  std::map<std::string, KnownFile> files_;
};

}  // namespace kestrune::platform
