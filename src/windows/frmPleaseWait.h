#pragma once

#include <QWidget>
#include <cstdint>

class QLabel;

namespace kestrune::windows {

/// Shown while the radio is looked for.
class frmPleaseWait final : public QWidget {
 public:
  frmPleaseWait();

  void ShowPort(std::int16_t port);

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  QLabel* lblPort_;
};

}  // namespace kestrune::windows
