#include "hostile/DiskState.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stop_token>

#include "hostile/DiskRun.h"

namespace kestrune::test {
namespace {

std::string Contents(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace

bool OnShelf(const std::string& path) {
  return path.find("/Shelf/") != std::string::npos;
}

DiskState::DiskState(const std::string& folder) {
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
    if (!entry.is_regular_file()) continue;
    const std::string path = entry.path().string().substr(folder.size());
    const std::string name = entry.path().filename();
    if (name.starts_with("Capture") || (name.starts_with(".kestrune-") && name != ".kestrune-shelf")) {
      Leftovers.push_back(path);
    } else if (path.starts_with("/music/") && !name.starts_with('.')) {
      Songs[path] = Contents(entry.path());
    } else if (name.starts_with("History.db.")) {
      PutAside.push_back(path);
    }
  }
  std::istringstream settings(Contents(DiskRun::Settings(folder)));
  for (std::string line; std::getline(settings, line);) {
    const std::size_t sign = line.find('=');
    if (sign != std::string::npos) Settings[line.substr(0, sign)] = line.substr(sign + 1);
  }
  Log = Contents(DiskRun::Data(folder) + "/Kestrune.log");
}

std::string WhatIsWrong(const std::string& path) {
  const std::string before = Contents(path);
  platform::DiskFile file;
  const platform::MendedCapture mended = platform::MendCapture(file, path, std::stop_token());
  using State = platform::MendedCapture::State;
  if (mended.Is == State::Empty) return "there is no sound in it";
  if (mended.Is != State::Whole) return "it cannot be mended: " + mended.Cause;
  return Contents(path) == before ? "" : "it had to be mended";
}

}  // namespace kestrune::test
