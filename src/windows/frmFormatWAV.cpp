#include "windows/frmFormatWAV.h"

namespace kestrune::windows {

frmFormatWAV::frmFormatWAV(presenters::FormatOptions& options, QWidget* parent)
    : OptionButtons("frmFormatWAV", options, parent) {}

}  // namespace kestrune::windows
