#include "windows/frmFormatVOX.h"

namespace kestrune::windows {

frmFormatVOX::frmFormatVOX(presenters::FormatOptions& options, QWidget* parent)
    : OptionButtons("frmFormatVOX", options, parent) {}

}  // namespace kestrune::windows
