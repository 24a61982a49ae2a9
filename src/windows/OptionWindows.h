#pragma once

#include <string_view>

#include "presenters/Configuration.h"

class QDialog;
class QWidget;

namespace kestrune::windows {

/// Makes the option window of a recording format, such as frmFormatMP3; null if no format has this code. The
/// parent owns it. Formats whose settings are a choice of buttons each share OptionButtons; frmFormatRAW,
/// frmFormatVOX, frmFormatWAV, frmFormatG726, frmFormatFLAC and frmFormatOPUS are of this kind.
[[nodiscard]] QDialog* MakeOptionWindow(std::string_view fileFormat, presenters::Configuration& configuration,
                                        QWidget* parent);

}  // namespace kestrune::windows
