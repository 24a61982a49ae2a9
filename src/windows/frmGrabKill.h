#pragma once

#include <QDialog>

#include "presenters/GrabKill.h"

namespace kestrune::windows {

/// The question of the quick addition, shown until it is answered. Closed without a button, it gives no answer.
class frmGrabKill final : public QDialog {
 public:
  /// Shows the question of the rules, which must outlive the window.
  explicit frmGrabKill(presenters::GrabKill& rules, QWidget* parent = nullptr);
};

}  // namespace kestrune::windows
