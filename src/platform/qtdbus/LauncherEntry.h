#pragma once

#include <QDBusConnection>
#include <QString>

#include "platform/LauncherCount.h"

namespace kestrune::platform {

/// Tells the number to all launchers on the desktop's message bus that listen, by the signal Update of
/// com.canonical.Unity.LauncherEntry, which those of several desktops understand. Its end takes the number off.
class LauncherEntry final : public LauncherCount {
 public:
  explicit LauncherEntry(QDBusConnection bus = QDBusConnection::sessionBus());
  ~LauncherEntry() override;
  LauncherEntry(const LauncherEntry&) = delete;
  LauncherEntry& operator=(const LauncherEntry&) = delete;

  void Show(int count) override;

 private:
  QDBusConnection bus_;
  int shown_ = 0;
};

}  // namespace kestrune::platform
