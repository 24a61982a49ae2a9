#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <string>
#include <string_view>

#include "platform/Files.h"

namespace kestrune::schedule {

/// The most recent lines of the log, oldest first, as the log window shows them.
class LogList {
 public:
  static constexpr std::size_t kMaxLines = 5000;

  enum class Change {
    Added,  ///< one line at the end; lines may have gone from the top
    Reset,  ///< anything
  };
  using ChangeHandler = std::function<void(Change)>;

  explicit LogList(platform::Files& files) : files_(files) {}

  /// The log file's full path.
  void SetLogPath(std::string_view path) { logPath_ = path; }
  [[nodiscard]] const std::string& LogPath() const { return logPath_; }

  /// "Load" reads the file, and a load ends with one line less than the list can hold; "Clear" empties list
  /// and file; any other text is a line to add.
  void DoLog(std::string_view logText);

  [[nodiscard]] const std::deque<std::string>& Lines() const { return lines_; }
  /// Index of the selected line, always the last one; -1 in an empty list.
  [[nodiscard]] int SelectedLine() const { return static_cast<int>(lines_.size()) - 1; }

  /// Runs after each change, for the one window that shows the list.
  void SetChangeHandler(ChangeHandler handler) { changeHandler_ = std::move(handler); }

 private:
  void Load();

  platform::Files& files_;
  std::string logPath_;
  std::deque<std::string> lines_;
  ChangeHandler changeHandler_;
};

}  // namespace kestrune::schedule
