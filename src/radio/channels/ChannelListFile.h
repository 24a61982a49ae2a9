#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/Files.h"
#include "radio/channels/ChannelEntry.h"

namespace kestrune::radio {

/// The saved channel list: one line for each channel, of five fields separated by tabs: number, station, two empty
/// ones and genre. UTF-8.
class ChannelListFile {
 public:
  explicit ChannelListFile(platform::Files& files) : files_(files) {}

  /// "ChannelList", the unit's text and ".txt" in the folder of the program's data.
  void SetPlace(std::string_view userDataFolder, std::string_view multiUnit);
  [[nodiscard]] const std::string& Path() const { return path_; }

  [[nodiscard]] bool Exists() const { return files_.Exists(path_); }
  /// Nothing if the file cannot be read.
  [[nodiscard]] std::vector<ChannelEntry> Read() const;
  /// Replaces the file; false if that failed.
  [[nodiscard]] bool Write(const std::vector<ChannelEntry>& entries);
  [[nodiscard]] bool Remove() { return files_.Remove(path_).Ok(); }

  /// One entry for each line, whatever it holds: a number that is invalid or out of range becomes 0, and
  /// missing fields are empty. The genre of channel 1 is left out.
  [[nodiscard]] static std::vector<ChannelEntry> Parse(std::string_view text);
  /// A tab or a line end within a text would break the file, so control characters become blanks.
  [[nodiscard]] static std::string Format(const std::vector<ChannelEntry>& entries);

 private:
  platform::Files& files_;
  std::string path_;
};

}  // namespace kestrune::radio
