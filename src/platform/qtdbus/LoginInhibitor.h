#pragma once

#include <QDBusConnection>
#include <QDBusPendingCallWatcher>
#include <QDBusUnixFileDescriptor>
#include <QString>
#include <functional>
#include <memory>

#include "platform/SleepInhibitor.h"

namespace kestrune::platform {

/// Asks the system's login service (org.freedesktop.login1) to keep the machine awake. Where it may not keep it
/// from sleeping altogether, it keeps it from sleeping because nobody is at it. The answer is awaited by the
/// program's loop, never by the caller.
class LoginInhibitor final : public SleepInhibitor {
 public:
  /// `refused` is called from the loop, or within Hold, if the service cannot be reached or gives no lock; not after a
  /// Release.
  explicit LoginInhibitor(
      QDBusConnection bus = QDBusConnection::systemBus(), std::function<void()> refused = [] {});

  void Hold(std::string_view why) override;
  void Release() override;

 private:
  void Ask(const QString& what);
  void Answered(const QString& what);

  QDBusConnection bus_;
  std::function<void()> refused_;
  QString why_;
  bool wanted_ = false;
  std::unique_ptr<QDBusPendingCallWatcher> asked_;
  QDBusUnixFileDescriptor lock_;  ///< as long as it is open the machine stays awake
};

}  // namespace kestrune::platform
