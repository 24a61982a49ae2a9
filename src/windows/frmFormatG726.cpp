#include "windows/frmFormatG726.h"

namespace kestrune::windows {

frmFormatG726::frmFormatG726(presenters::FormatOptions& options, QWidget* parent)
    : OptionButtons("frmFormatG726", options, parent) {}

}  // namespace kestrune::windows
