#pragma once

#include <QWidget>

#include "config/update/Updating.h"

class QLabel;
class QProgressBar;

namespace kestrune::windows {

/// The window of a download. It asks nothing and can be hidden; the download goes on without it. Whoever
/// creates it shows it, and destroys it at the download's end. It calls Refresh by itself while it is
/// visible, often enough for the bar to move smoothly.
class frmUpdating final : public QWidget {
 public:
  /// The record must outlive the window. The bar moves at its own pace, to show that the program is alive.
  explicit frmUpdating(const config::UpdatingWindow& record, QWidget* parent = nullptr);

  void Refresh();

 private:
  const config::UpdatingWindow& record_;
  QLabel* lblUpdating_;
  QProgressBar* pbrDownload_;
};

}  // namespace kestrune::windows
