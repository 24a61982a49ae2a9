#pragma once

#include <QWidget>

#include "config/update/Updating.h"

class QLabel;
class QProgressBar;

namespace kestrune::windows {

/// The window of a download. It asks nothing and can be put out of sight; the download goes on without it. Shown
/// by whoever makes it, destroyed at the download's end. Refresh is to be called as often as the bar is to move
/// smoothly; the window does so by itself while it is visible.
class frmUpdating final : public QWidget {
 public:
  /// The record must outlive the window. A bar that runs at its own pace is what tells that the program lives.
  explicit frmUpdating(const config::UpdatingWindow& record, QWidget* parent = nullptr);

  void Refresh();

 private:
  const config::UpdatingWindow& record_;
  QLabel* lblUpdating_;
  QProgressBar* pbrDownload_;
};

}  // namespace kestrune::windows
