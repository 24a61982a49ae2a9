#pragma once

#include <QDialog>
#include <string_view>

namespace kestrune::windows {

/// Tells the radio's identifier, which its owner has asked the radio for. Shown with exec().
class frmRadioID final : public QDialog {
 public:
  explicit frmRadioID(std::string_view radioID, QWidget* parent = nullptr);
};

}  // namespace kestrune::windows
