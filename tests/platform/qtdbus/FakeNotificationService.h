#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QString>
#include <QStringList>
#include <QVariantMap>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

namespace kestrune::test {

/// A desktop's notification service on a test's own bus. It shows nothing and remembers everything, and answers late, wrongly
/// or not at all if told.
class FakeNotificationService final : public QDBusVirtualObject {
 public:
  struct Shown {
    std::string Program;
    std::uint32_t Replaces = 0;
    std::string Icon;
    std::string Title;
    std::string Text;
    std::vector<std::string> Actions;
    QVariantMap Hints;
    int Time = 0;
  };

  explicit FakeNotificationService(const QString& address,
                                   QStringList abilities = {QStringLiteral("actions"), QStringLiteral("body"),
                                                            QStringLiteral("body-markup")})
      : Abilities(std::move(abilities)), bus_(QDBusConnection::connectToBus(address, kName)) {
    EXPECT_TRUE(bus_.registerVirtualObject(kObject, this));
    EXPECT_TRUE(bus_.registerService(kService));
  }
  ~FakeNotificationService() override {
    bus_.unregisterService(kService);
    bus_.unregisterObject(kObject);
    QDBusConnection::disconnectFromBus(kName);
  }
  FakeNotificationService(const FakeNotificationService&) = delete;
  FakeNotificationService& operator=(const FakeNotificationService&) = delete;

  [[nodiscard]] QString introspect(const QString& /*path*/) const override { return {}; }
  bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
    const std::string method = message.member().toStdString();
    if (message.interface() != kService) return false;
    ++Calls[method];
    if (method == "Notify") Remember(message);
    if (method == "CloseNotification") Closed.push_back(message.arguments().value(0).toUInt());
    const QDBusMessage reply = ReplyTo(message);
    if (Silent) {
      waiting_.push_back(reply);
    } else if (message.isReplyRequired()) {
      connection.send(reply);
    }
    return true;
  }

  /// Answers what has been waiting, in the order of the calls.
  void Answer() {
    Silent = false;
    for (const QDBusMessage& reply : waiting_) bus_.send(reply);
    waiting_.clear();
  }
  void Signal(const char* name, const QVariantList& arguments) {
    QDBusMessage signal = QDBusMessage::createSignal(kObject, kService, QString::fromLatin1(name));
    signal.setArguments(arguments);
    bus_.send(signal);
  }
  void Invoke(std::uint32_t id, std::string_view key) {
    Signal("ActionInvoked", {id, QString::fromUtf8(key.data(), static_cast<qsizetype>(key.size()))});
  }
  void CloseOne(std::uint32_t id) { Signal("NotificationClosed", {id, 2U}); }

  std::vector<Shown> Messages;
  std::vector<std::uint32_t> Closed;
  std::map<std::string, int> Calls;
  QStringList Abilities;
  bool Silent = false;    ///< no answers for now
  QString Error;          ///< what every call is answered with; empty: it is done
  QVariantList Nonsense;  ///< what every call is answered with in place of what it should be
  std::uint32_t NextId = 7;

 private:
  static inline const QString kName = QStringLiteral("notification service");
  static inline const QString kService = QStringLiteral("org.freedesktop.Notifications");
  static inline const QString kObject = QStringLiteral("/org/freedesktop/Notifications");

  void Remember(const QDBusMessage& message) {
    EXPECT_EQ(message.signature(), QStringLiteral("susssasa{sv}i"));
    const QVariantList facts = message.arguments();
    Shown shown{.Program = facts.value(0).toString().toStdString(),
                .Replaces = facts.value(1).toUInt(),
                .Icon = facts.value(2).toString().toStdString(),
                .Title = facts.value(3).toString().toStdString(),
                .Text = facts.value(4).toString().toStdString(),
                .Actions = {},
                .Hints = qdbus_cast<QVariantMap>(facts.value(6)),
                .Time = facts.value(7).toInt()};
    for (const QString& action : facts.value(5).toStringList()) shown.Actions.push_back(action.toStdString());
    Messages.push_back(shown);
  }
  QDBusMessage ReplyTo(const QDBusMessage& message) {
    if (!Error.isEmpty()) return message.createErrorReply(Error, QStringLiteral("no"));
    if (!Nonsense.isEmpty()) return message.createReply(Nonsense);
    if (message.member() == QLatin1String("GetCapabilities")) return message.createReply(QVariant(Abilities));
    if (message.member() != QLatin1String("Notify")) return message.createReply();
    const std::uint32_t replaces = message.arguments().value(1).toUInt();
    return message.createReply(QVariant(replaces != 0 ? replaces : NextId++));
  }

  QDBusConnection bus_;
  std::vector<QDBusMessage> waiting_;
};

}  // namespace kestrune::test
