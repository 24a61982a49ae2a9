#pragma once

#include "windows/OptionButtons.h"

namespace kestrune::windows {

/// The options of the format VOX.
class frmFormatVOX final : public OptionButtons {
 public:
  /// `options` are those of this format; they must outlive the window.
  explicit frmFormatVOX(presenters::FormatOptions& options, QWidget* parent = nullptr);
};

}  // namespace kestrune::windows
