#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrune::platform {

/// The text of a settings file: sections in brackets, one "key=value" per line. Sections and keys compare
/// without regard to case. Lines that are neither, comments among them, are kept unchanged. Any bytes may
/// be stored: a backslash introduces what a line cannot hold, and blanks at the ends of a value.
class IniText {
 public:
  IniText() = default;
  explicit IniText(std::string_view text);

  /// If a key appears several times, the last one counts.
  [[nodiscard]] std::optional<std::string> Get(std::string_view section, std::string_view key) const;
  void Set(std::string_view section, std::string_view key, std::string_view value);
  /// False if the key is absent.
  bool Delete(std::string_view section, std::string_view key);

  [[nodiscard]] std::string Text() const;

 private:
  struct Line {
    std::string Raw;                   ///< as in the file, with its line end
    std::string Section;               ///< the section that it belongs to, or opens, folded
    std::optional<std::string> Key{};  ///< folded; absent if the line is no key
    std::string Value{};
  };

  [[nodiscard]] static Line KeyLine(std::string_view section, std::string_view key, std::string_view value);

  std::vector<Line> lines_;
};

}  // namespace kestrune::platform
