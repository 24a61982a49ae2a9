#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

#include "real/Process.h"

namespace kestrune::test {

/// A song of a line-up; the radio has room for 16 characters a text.
struct LineUpSong {
  std::string Artist;
  std::string Title;
  double Seconds = 0;
  std::string Join{};            ///< to the next song, with the signal "music"
  std::optional<double> Lead{};  ///< of its text, in seconds; else the receiver's
};

struct LineUpStation {
  int Number = 0;
  std::string Name;
  std::string Genre;
  std::vector<LineUpSong> Songs;
};

/// A kestrune-radio in a folder of its own, with its line-up, its link and its record of what it did.
class Receiver {
 public:
  struct Setup {
    std::vector<LineUpStation> Stations;
    std::string Sound = "none";
    std::string Signal = "tones";
    std::vector<std::string> Arguments{};  ///< further ones
    std::map<std::string, std::string> Environment{};
  };

  /// Starts it and waits until its line can be opened.
  Receiver(std::string folder, Setup setup);

  void Start();
  /// Ends it on the spot, without a chance to clean up.
  void Kill();

  /// The device path for the program.
  [[nodiscard]] std::string Link() const { return folder_ + "/line"; }
  /// What it has reported so far: objects with "time", "event" and more. A line that is still being written is
  /// left out.
  [[nodiscard]] std::vector<nlohmann::json> Events() const;
  [[nodiscard]] std::vector<nlohmann::json> Events(std::string_view event) const;

 private:
  std::string folder_;
  Setup setup_;
  std::unique_ptr<Process> process_;
};

}  // namespace kestrune::test
