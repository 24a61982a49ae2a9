#pragma once

#include <QWidget>
#include <functional>

#include "presenters/PleaseWait.h"

class QLabel;
class QProgressBar;
class QPushButton;

namespace kestrune::windows {

/// Shown while the radio is looked for, in front of all others. It goes when the search ends; until then its user can
/// only ask for the end of the program.
class frmPleaseWait final : public QWidget {
 public:
  frmPleaseWait();

  /// The button, Escape or the close button.
  std::function<void()> CancelAsked = [] {};

  /// Shows the record.
  void Refresh(const presenters::PleaseWait& record);

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void closeEvent(QCloseEvent* event) override;

 private:
  QLabel* lblPort_;
  QLabel* lblStep_;
  QProgressBar* pbrSearch_;
  QPushButton* cmdCancel_;
};

}  // namespace kestrune::windows
