#pragma once

#include <map>
#include <string>
#include <vector>

namespace kestrune::test {

/// What lies in the folder of a DiskRun between two runs.
struct DiskState {
  explicit DiskState(const std::string& folder);

  std::map<std::string, std::string>
      Songs;  ///< contents by path below the folder: recorded, recovered, on the shelf
  std::vector<std::string> Leftovers;           ///< captures, and files that were to replace another one
  std::vector<std::string> PutAside;            ///< records that could not be read
  std::map<std::string, std::string> Settings;  ///< as they stand in the file
  std::string Log;
};

[[nodiscard]] bool OnShelf(const std::string& path);

/// Of a song file: what is wrong with it, as a mender sees it; empty if nothing is. Raw samples have nothing to be wrong.
/// The file may be changed.
[[nodiscard]] std::string WhatIsWrong(const std::string& path);

}  // namespace kestrune::test
