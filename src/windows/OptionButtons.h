#pragma once

#include <vector>

#include "presenters/FormatOptions.h"
#include "windows/OptionDialog.h"

class QRadioButton;

namespace kestrune::windows {

/// An option window of groups of option buttons, laid out as the design of its rules says. Its name is
/// frmFormat and the format's code.
class OptionButtons final : public OptionDialog {
 public:
  /// `options` must outlive the window; the constructor loads them.
  explicit OptionButtons(presenters::FormatOptions& options, QWidget* parent = nullptr);

  void Refresh();

 protected:
  bool cmdOK() override;

 private:
  void AddGroups();

  presenters::FormatOptions& options_;
  std::vector<std::vector<QRadioButton*>> buttons_;  ///< by group
};

}  // namespace kestrune::windows
