#pragma once

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVirtualObject>
#include <QVariantMap>
#include <set>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <gtest/gtest.h>

namespace kestrune::test {

/// The desktop's portal, as far as it keeps the machine awake: each call makes a request, which lasts until it is
/// closed.
class FakePortal final : public QDBusVirtualObject {
 public:
  explicit FakePortal(const QString& address)
      : bus_(QDBusConnection::connectToBus(address, QStringLiteral("portal"))) {
    EXPECT_TRUE(bus_.registerVirtualObject(QStringLiteral("/org/freedesktop/portal/desktop"), this,
                                           QDBusConnection::SubPath));
    EXPECT_TRUE(bus_.registerService(QStringLiteral("org.freedesktop.portal.Desktop")));
  }
  ~FakePortal() override { QDBusConnection::disconnectFromBus(QStringLiteral("portal")); }
  FakePortal(const FakePortal&) = delete;
  FakePortal& operator=(const FakePortal&) = delete;

  [[nodiscard]] QString introspect(const QString& /*path*/) const override { return {}; }
  bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
    if (message.interface() == QLatin1String("org.freedesktop.portal.Request") &&
        message.member() == QLatin1String("Close")) {
      Closed += static_cast<int>(requests_.erase(message.path()));
      connection.send(message.createReply());
      return true;
    }
    if (message.interface() != QLatin1String("org.freedesktop.portal.Inhibit") ||
        message.member() != QLatin1String("Inhibit") || message.signature() != QLatin1String("sua{sv}")) {
      return false;
    }
    const QVariantMap options = qdbus_cast<QVariantMap>(message.arguments().at(2));
    Calls.push_back(fmt::format("'{}' {} {}", message.arguments().at(0).toString().toStdString(),
                                message.arguments().at(1).toUInt(),
                                options[QStringLiteral("reason")].toString().toStdString()));
    if (Refuses) {
      connection.send(message.createErrorReply(QStringLiteral("org.freedesktop.portal.Error.NotAllowed"),
                                               QStringLiteral("not allowed")));
      return true;
    }
    const QString path = QStringLiteral("/org/freedesktop/portal/desktop/request/1_7/t%1").arg(Calls.size());
    requests_.insert(path);
    connection.send(message.createReply(QVariant::fromValue(QDBusObjectPath(path))));
    return true;
  }

  [[nodiscard]] int Held() const { return static_cast<int>(requests_.size()); }

  std::vector<std::string> Calls;
  int Closed = 0;
  bool Refuses = false;

 private:
  QDBusConnection bus_;
  std::set<QString> requests_;
};

}  // namespace kestrune::test
