#pragma once

#include <QWidget>
#include <memory>
#include <string>

#include "base/EventLoop.h"
#include "platform/Dialogs.h"
#include "platform/Shell.h"

namespace kestrune::windows {

/// The maker's addresses, which are configured outside the program. An empty one is not shown.
struct MakerLinks {
  std::string WebSite{};
  std::string Mail{};  ///< an address without a scheme
};

/// Shows the program's name and version for three seconds, at the start and on demand.
class frmSplash final : public QWidget {
 public:
  /// All must outlive the window.
  frmSplash(base::EventLoop& loop, platform::Shell& shell, platform::Dialogs& dialogs,
            const MakerLinks& links);

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;

 private:
  void Open(const std::string& target, const char* title, const std::string& shown);

  platform::Shell& shell_;
  platform::Dialogs& dialogs_;
  std::unique_ptr<base::Timer> tmrDelay_;
};

}  // namespace kestrune::windows
