#pragma once

#include <QDialog>
#include <vector>

#include "config/settings/SettingsSection.h"
#include "presenters/FilenameFormatSelect.h"

class QPushButton;

namespace kestrune::windows {

/// The ready-made filename formats. It closes by a choice (accepted) or without one.
class frmFilenameFormatSelect final : public QDialog {
 public:
  /// The references must outlive the window.
  frmFilenameFormatSelect(presenters::FilenameFormatSelect& formats, const config::SettingsSection& section,
                          QWidget* parent = nullptr);

  void done(int result) override;

 private:
  presenters::FilenameFormatSelect& formats_;
  const config::SettingsSection& section_;
};

}  // namespace kestrune::windows
