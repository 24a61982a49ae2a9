#pragma once

#include <memory>
#include <string>

#include "base/EventLoop.h"

namespace kestrune::config {

/// What the window of a download shows.
struct UpdatingWindow {
  bool Visible = false;
  std::string Caption = "Updating Kestrune";
  std::string lblUpdating =
      "Kestrune is currently downloading the most recent version. This may take several minutes depending on "
      "the speed of your connection.";
  int pbrDownload = 0;  ///< 0 to 100
};

/// The rules of that window: its bar runs from 0 to 100 over and over for as long as it is open. It tells
/// nothing about the real progress.
class Updating {
 public:
  explicit Updating(base::EventLoop& loop);

  void Open();
  void Close();
  [[nodiscard]] const UpdatingWindow& Window() const { return window_; }

 private:
  UpdatingWindow window_;
  std::unique_ptr<base::Timer> tmrUpdateBar_;
};

}  // namespace kestrune::config
