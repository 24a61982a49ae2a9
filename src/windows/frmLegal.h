#pragma once

#include <QDialog>
#include <string>

#include "platform/Dialogs.h"

class QCheckBox;

namespace kestrune::windows {

/// The agreement of the first run. Accepted if the user agreed; rejected ends the program.
class frmLegal final : public QDialog {
 public:
  /// `agreementFile` is the full path of Agreement.html; the dialogs must outlive the window.
  frmLegal(const std::string& agreementFile, platform::Dialogs& dialogs);

 private:
  void cmdAgree_Click();

  platform::Dialogs& dialogs_;
  QCheckBox* chkAgree_;
};

}  // namespace kestrune::windows
