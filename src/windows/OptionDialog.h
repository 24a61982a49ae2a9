#pragma once

#include <QDialog>
#include <string_view>

class QHBoxLayout;
class QVBoxLayout;

namespace kestrune::windows {

/// What the option windows of all formats share: room for their controls above cmdOK and cmdCancel. A cancel,
/// by button, Escape or close box, keeps nothing; the rules' own copy is filled anew next time.
class OptionDialog : public QDialog {
 public:
  OptionDialog(const char* objectName, std::string_view caption, QWidget* parent);

 protected:
  /// Where the controls go, from top to bottom.
  [[nodiscard]] QVBoxLayout& Body() { return *body_; }
  /// Called by the derived constructor after it has added its controls, so that they come first in the tab
  /// order.
  void AddButtons();
  /// The user pressed cmdOK; true closes the window.
  virtual bool cmdOK() = 0;

 private:
  QVBoxLayout* body_;
};

}  // namespace kestrune::windows
