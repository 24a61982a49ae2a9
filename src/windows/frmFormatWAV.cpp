#include "windows/frmFormatWAV.h"

namespace kestrune::windows {

frmFormatWAV::frmFormatWAV(config::FormatOptions& options, QWidget* parent)
    : OptionButtons("frmFormatWAV", options, parent) {}

}  // namespace kestrune::windows
