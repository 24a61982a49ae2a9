#pragma once

#include <string>
#include <string_view>

#include "platform/posix/FileDescriptor.h"

namespace kestrune::radio_program {

/// The receiver's end of a pseudo-terminal. The program opens the other end, closes it and opens it again as
/// it likes; what is sent meanwhile is lost, as on a real line.
class RadioLine {
 public:
  RadioLine() = default;
  ~RadioLine();
  RadioLine(const RadioLine&) = delete;
  RadioLine& operator=(const RadioLine&) = delete;

  /// Empty on success. `link` may be empty; a symbolic link that is there already is replaced, anything else
  /// is not.
  [[nodiscard]] std::string Open(const std::string& link);

  /// The device that the program opens.
  [[nodiscard]] const std::string& Path() const { return path_; }
  [[nodiscard]] int Handle() const { return master_.Number(); }
  /// Whether the program has the other end open.
  [[nodiscard]] bool Connected() const;
  /// All that has come, empty if nothing has.
  [[nodiscard]] std::string Read();
  /// What the other end has no room for is lost.
  void Write(std::string_view bytes);

 private:
  platform::FileDescriptor master_;
  std::string path_;
  std::string link_;
};

}  // namespace kestrune::radio_program
