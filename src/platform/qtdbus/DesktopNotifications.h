#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusServiceWatcher>
#include <QString>
#include <QStringList>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/Notifications.h"
#include "platform/qtdbus/NotificationSignals.h"
#include "platform/qtdbus/ShownNotices.h"

namespace kestrune::platform {

/// Shows messages through the desktop's notification service (org.freedesktop.Notifications, version 1.2). Every answer
/// is awaited by the program's loop.
///
/// 1. What the service can do is asked before the first message, and again after another service has come in its place.
///    A service that shows no actions gets none; one that reads text as markup gets it escaped.
/// 2. While a service answers late, the messages of a subject wait for it, and only the latest of them is sent.
/// 3. What the service says is a stranger's: an answer that makes no sense is none, and a signal counts only from the
///    service itself, about a message that is shown, with an action that this message has.
class DesktopNotifications final : public Notifications {
 public:
  struct Identity {
    std::string Name;  ///< as people read it: "Kestrune"
    std::string Icon;  ///< a name in the desktop's theme, or a full path
  };

  explicit DesktopNotifications(Identity identity, QDBusConnection bus = QDBusConnection::sessionBus());
  ~DesktopNotifications() override;
  DesktopNotifications(const DesktopNotifications&) = delete;
  DesktopNotifications& operator=(const DesktopNotifications&) = delete;

  void Show(const Notice& notice) override;
  void Withdraw(std::string_view subject) override;

 private:
  void AskWhatItCan();
  void TakeWhatItCan();
  void Send(const std::string& subject);
  void TakeNumber(const std::string& subject);
  void Close(std::uint32_t number);
  void Heard(const QDBusMessage& signal);
  void Forget();
  [[nodiscard]] bool Can(const char* ability) const;

  const Identity identity_;
  QDBusConnection bus_;
  std::unique_ptr<QDBusPendingCallWatcher> asked_;
  std::optional<QStringList> abilities_;  // nothing until the service has answered
  ShownNotices notices_;
  std::map<std::string, std::unique_ptr<QDBusPendingCallWatcher>> sent_;  // by subject; null once answered
  QDBusServiceWatcher owner_;
  NotificationSignals signals_;
};

}  // namespace kestrune::platform
