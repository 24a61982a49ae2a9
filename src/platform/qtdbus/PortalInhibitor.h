#pragma once

#include <QDBusConnection>
#include <QDBusPendingCallWatcher>
#include <QString>
#include <memory>

#include "platform/SleepInhibitor.h"

namespace kestrune::platform {

/// Asks the desktop's portal (org.freedesktop.portal.Inhibit) to keep the machine awake: what a program can ask that
/// sees nothing of the system, as in a sandbox. Where there is no portal nothing happens. The answer is awaited by the
/// program's loop, never by the caller.
class PortalInhibitor final : public SleepInhibitor {
 public:
  explicit PortalInhibitor(QDBusConnection bus = QDBusConnection::sessionBus());
  ~PortalInhibitor() override;
  PortalInhibitor(const PortalInhibitor&) = delete;
  PortalInhibitor& operator=(const PortalInhibitor&) = delete;

  void Hold(std::string_view why) override;
  void Release() override;

 private:
  void Answered();

  QDBusConnection bus_;
  bool wanted_ = false;
  std::unique_ptr<QDBusPendingCallWatcher> asked_;
  QString request_;  ///< the object of the request that is held; empty for none
};

}  // namespace kestrune::platform
