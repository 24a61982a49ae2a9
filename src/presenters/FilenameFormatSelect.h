#pragma once

#include <cstddef>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <utility>

namespace kestrune::presenters {

/// A ready-made filename format. The ".mp3" in the description does not depend on the file format.
struct FilenameFormatRow {
  std::string_view Format;
  std::string_view Description;
};

/// The eight of them, in the order in which they are shown.
[[nodiscard]] std::span<const FilenameFormatRow> FilenameFormats();

/// The rules of the window that offers them. Choosing saves nothing: the configuration does, when it is saved.
class FilenameFormatSelect {
 public:
  /// `txtFilenameFormat` is the text of the configuration window, which must outlive this object; `choose` writes it.
  FilenameFormatSelect(const std::string& txtFilenameFormat, std::function<void(std::string_view)> choose)
      : txtFilenameFormat_(txtFilenameFormat), choose_(std::move(choose)) {}

  /// What the button of the row says: "Select", or that the row is the present format. The last row is never
  /// marked.
  [[nodiscard]] std::string_view Caption(std::size_t row) const;
  void cmdSelect(std::size_t row);

 private:
  const std::string& txtFilenameFormat_;
  std::function<void(std::string_view)> choose_;
};

}  // namespace kestrune::presenters
