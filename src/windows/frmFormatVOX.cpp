#include "windows/frmFormatVOX.h"

namespace kestrune::windows {

frmFormatVOX::frmFormatVOX(config::FormatOptions& options, QWidget* parent)
    : OptionButtons("frmFormatVOX", options, parent) {}

}  // namespace kestrune::windows
