#pragma once

#include <vector>

#include "presenters/FormatOptions.h"
#include "windows/OptionDialog.h"

class QRadioButton;

namespace kestrune::windows {

/// An option window that is made of groups of option buttons, as its rules' design tells them.
class OptionButtons : public OptionDialog {
 public:
  /// `options` must outlive the window; the constructor loads them.
  OptionButtons(const char* objectName, presenters::FormatOptions& options, QWidget* parent);

  void Refresh();

 protected:
  bool cmdOK() override;

 private:
  void AddGroups();

  presenters::FormatOptions& options_;
  std::vector<std::vector<QRadioButton*>> buttons_;  ///< by group
};

}  // namespace kestrune::windows
