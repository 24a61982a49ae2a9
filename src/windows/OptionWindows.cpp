#include "windows/OptionWindows.h"

#include "windows/OptionButtons.h"
#include "windows/frmFormatMP3.h"
#include "windows/frmFormatOgg.h"

namespace kestrune::windows {
namespace {

struct OwnWindow {
  std::string_view FileFormat;
  QDialog* (*Make)(presenters::Configuration& configuration, QWidget* parent);
};

/// The formats that need more than buttons.
constexpr OwnWindow kOwnWindows[] = {
    {"MP3",
     [](presenters::Configuration& configuration, QWidget* parent) -> QDialog* {
       return new frmFormatMP3(configuration.Mp3(), parent);
     }},
    {"OGG",
     [](presenters::Configuration& configuration, QWidget* parent) -> QDialog* {
       return new frmFormatOgg(configuration.Ogg(), parent);
     }},
};

}  // namespace

QDialog* MakeOptionWindow(std::string_view fileFormat, presenters::Configuration& configuration,
                          QWidget* parent) {
  for (const OwnWindow& own : kOwnWindows) {
    if (own.FileFormat == fileFormat) return own.Make(configuration, parent);
  }
  presenters::FormatOptions* const buttons = configuration.Buttons(fileFormat);
  return buttons != nullptr ? new OptionButtons(*buttons, parent) : nullptr;
}

}  // namespace kestrune::windows
