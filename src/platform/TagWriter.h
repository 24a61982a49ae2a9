#pragma once

#include <string>
#include <string_view>

#include "base/Result.h"

namespace kestrune::platform {

/// The contents of a tag. All texts are UTF-8.
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

  /// Fails if the file cannot be opened or written; it is then as it was. A format that holds no tags is no failure.
  virtual base::Result Write(std::string_view path, const Tags& tags) = 0;
};

}  // namespace kestrune::platform
