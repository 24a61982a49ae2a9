#pragma once

#include <string_view>

#include "schedule/lists/RestrictList.h"

namespace kestrune::schedule {

/// An open editor of the Grab and Kill lists. It works on a copy of them, and its save replaces the file.
class ListEditor {
 public:
  virtual ~ListEditor() = default;

  /// An entry was added to the file elsewhere: the save must not lose it.
  virtual void AddItem(RestrictList list, std::string_view fragment) = 0;
};

}  // namespace kestrune::schedule
