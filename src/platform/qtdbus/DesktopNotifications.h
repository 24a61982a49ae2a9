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
  struct Subject {
    std::uint32_t Id = 0;        ///< of the message that is shown; 0 for none
    Notice Sent;                 ///< the latest that the service was given
    std::optional<Notice> Next;  ///< waits for an answer
    bool Withdrawn = false;      ///< asked for while the answer about the message was awaited
    std::unique_ptr<QDBusPendingCallWatcher> Asked;
  };

  void AskWhatItCan();
  void TakeWhatItCan();
  void Send(const std::string& name, Subject& subject);
  void TakeId(const std::string& name);
  void Close(Subject& subject);
  void Heard(const QDBusMessage& signal);
  void Forget();
  [[nodiscard]] bool Can(const char* ability) const;

  const Identity identity_;
  QDBusConnection bus_;
  std::unique_ptr<QDBusPendingCallWatcher> asked_;
  std::optional<QStringList> abilities_;  // nothing until the service has answered
  std::map<std::string, Subject, std::less<>> subjects_;
  QDBusServiceWatcher owner_;
  NotificationSignals signals_;
};

}  // namespace kestrune::platform
