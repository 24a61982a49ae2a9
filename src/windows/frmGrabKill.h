#pragma once

#include <QDialog>

#include "presenters/GrabKill.h"

namespace kestrune::windows {

/// The question of the quick addition. Shown blocking, by exec(); closed without a button it answers nothing.
class frmGrabKill final : public QDialog {
 public:
  /// Shows the question as it stands in the rules, which must outlive the window.
  explicit frmGrabKill(presenters::GrabKill& rules, QWidget* parent = nullptr);
};

}  // namespace kestrune::windows
