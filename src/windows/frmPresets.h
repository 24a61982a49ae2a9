#pragma once

#include <QDialog>
#include <array>

#include "config/settings/SettingsSection.h"
#include "presenters/PresetSetup.h"

class QComboBox;

namespace kestrune::windows {

/// Assigns a channel to each preset button. Not modal. It is made anew each time and deletes itself when it
/// closes, so its owner holds it in a QPointer.
class frmPresets final : public QDialog {
 public:
  /// Loads the rules and places itself. Both references must outlive the window.
  frmPresets(presenters::PresetSetup& rules, const config::SettingsSection& section,
             QWidget* parent = nullptr);

  void Refresh();

  /// Escape: as the button that leaves without saving.
  void reject() override { cmdCancel_Click(); }

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  void cmdSave_Click();
  void cmdCancel_Click();

  presenters::PresetSetup& rules_;
  const config::SettingsSection& section_;
  std::array<QComboBox*, presenters::Presets::kCount> cboPreset_{};
};

}  // namespace kestrune::windows
