#pragma once

#include <string>
#include <string_view>

namespace kestrune::platform {

/// What a tag says. All texts are UTF-8.
struct Tags {
  std::string Artist;
  std::string Title;
  std::string Comment;
  std::string Encoder;
  int Kind = 1;  ///< the only kind that the product asks for

  bool operator==(const Tags&) const = default;
};

/// Writes tags into a finished file. Used from the main thread.
class TagWriter {
 public:
  virtual ~TagWriter() = default;

  /// False if the file cannot be opened or its format holds no tags; it is then as it was.
  [[nodiscard]] virtual bool Write(std::string_view path, const Tags& tags) = 0;
};

}  // namespace kestrune::platform
