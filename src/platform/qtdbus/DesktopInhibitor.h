#pragma once

#include <QDBusConnection>
#include <functional>
#include <optional>
#include <string>

#include "platform/qtdbus/LoginInhibitor.h"
#include "platform/qtdbus/PortalInhibitor.h"

namespace kestrune::platform {

/// Keeps the machine awake by whoever can be reached: the system's login service, and if that gives no lock the desktop's
/// portal.
class DesktopInhibitor final : public SleepInhibitor {
 public:
  /// The bus of the session is looked for only when it is needed: a run without a desktop has none.
  explicit DesktopInhibitor(QDBusConnection system = QDBusConnection::systemBus(),
                            std::function<QDBusConnection()> session = QDBusConnection::sessionBus);

  ~DesktopInhibitor() override = default;
  DesktopInhibitor(const DesktopInhibitor&) = delete;
  DesktopInhibitor& operator=(const DesktopInhibitor&) = delete;

  void Hold(std::string_view why) override;
  void Release() override;

 private:
  void AskPortal();

  std::function<QDBusConnection()> session_;
  std::string why_;
  LoginInhibitor login_;
  std::optional<PortalInhibitor> portal_;
};

}  // namespace kestrune::platform
