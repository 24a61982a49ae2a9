#include "real/LineUps.h"

#include <cstdint>
#include <filesystem>
#include <fstream>

namespace kestrune::test {

std::vector<LineUpStation> ShortLineUp(const std::vector<std::string>& titles, double seconds) {
  LineUpStation first{1, "Preview", "Guide", {}};
  for (const std::string& title : titles) first.Songs.push_back({"The Preview", title, seconds});
  return {first, {3, "Other", "Talk", {{"Newsline", "Markets", seconds}}}};
}

std::vector<LineUpStation> TenStations(double seconds) {
  // Signs that file names do not take, and a letter beyond ASCII.
  std::vector<LineUpStation> stations{{8,
                                       "Neon 80s",
                                       "Decades",
                                       {{"Telephone Isle", "Call Me", seconds},
                                        {"Los Claveles", "Canción/Puerto", seconds},
                                        {"Silver & Tetra", "What's It?", seconds},
                                        {"THE ARCADES", "INSERT COIN", seconds}}}};
  for (int number = 20; number < 29; ++number) {
    const std::string text = std::to_string(number);
    stations.push_back({number, "Station " + text, "Talk", {{"Artist " + text, "Song " + text, seconds}}});
  }
  return stations;
}

std::map<std::string, std::string> ShortSongs() {
  return {{"Channel", "1"},           {"MinSongLength", "2"}, {"FilenameFormat", "%s"},
          {"SaveDuplicates", "True"}, {"FileFormat", "WAV"},  {"Integrel", "True"}};
}

std::string QuietFile(const std::string& folder) {
  std::string path = folder + "/quiet.raw";
  std::ofstream(path).close();
  // A quarter of an hour that takes no room on the disk.
  std::filesystem::resize_file(path, std::uintmax_t{15 * 60} * 44100 * 4);
  return path;
}

}  // namespace kestrune::test
