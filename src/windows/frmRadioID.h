#pragma once

#include <QDialog>
#include <string_view>

namespace kestrune::windows {

/// Shows the radio's identifier, for which its owner has asked the radio.
class frmRadioID final : public QDialog {
 public:
  explicit frmRadioID(std::string_view radioID, QWidget* parent = nullptr);
};

}  // namespace kestrune::windows
