#include "windows/frmFormatRAW.h"

namespace kestrune::windows {

frmFormatRAW::frmFormatRAW(presenters::FormatOptions& options, QWidget* parent)
    : OptionButtons("frmFormatRAW", options, parent) {}

}  // namespace kestrune::windows
