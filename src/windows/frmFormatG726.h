#pragma once

#include "windows/OptionButtons.h"

namespace kestrune::windows {

/// The options of the format G726.
class frmFormatG726 final : public OptionButtons {
 public:
  /// `options` are those of this format; they must outlive the window.
  explicit frmFormatG726(presenters::FormatOptions& options, QWidget* parent = nullptr);
};

}  // namespace kestrune::windows
