#include "config/settings/Settings.h"

namespace kestrune::config {

void WriteFileDir(Settings& settings, std::string_view folder) {
  settings.FileDir = folder;
  if (!folder.ends_with('/')) settings.FileDir += '/';
}

bool WriteFileFormat(Settings& settings, std::string_view code, const std::function<void()>& cmdStop) {
  if (settings.FileFormat == code) return false;
  cmdStop();
  settings.FileFormat = code;
  return true;
}

}  // namespace kestrune::config
