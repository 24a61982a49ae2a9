#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusUnixFileDescriptor>
#include <QDBusVirtualObject>
#include <string>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <unistd.h>

namespace kestrune::test {

/// The login service, as far as it hands out locks: each is one end of a pipe, and the other end shows when it
/// has been released.
class FakeLogin final : public QDBusVirtualObject {
 public:
  explicit FakeLogin(const QString& address)
      : bus_(QDBusConnection::connectToBus(address, QStringLiteral("login"))) {
    EXPECT_TRUE(bus_.registerVirtualObject(QStringLiteral("/org/freedesktop/login1"), this));
    EXPECT_TRUE(bus_.registerService(QStringLiteral("org.freedesktop.login1")));
  }
  ~FakeLogin() override {
    for (const int lock : locks_) ::close(lock);
    QDBusConnection::disconnectFromBus(QStringLiteral("login"));
  }
  FakeLogin(const FakeLogin&) = delete;
  FakeLogin& operator=(const FakeLogin&) = delete;

  [[nodiscard]] QString introspect(const QString& /*path*/) const override { return {}; }
  bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
    if (message.interface() != QLatin1String("org.freedesktop.login1.Manager") ||
        message.member() != QLatin1String("Inhibit")) {
      return false;
    }
    std::string call;
    for (const QVariant& argument : message.arguments()) call += argument.toString().toStdString() + "|";
    Calls.push_back(call);
    if (message.arguments().value(0).toString().startsWith(QString::fromStdString(Refused)) &&
        !Refused.empty()) {
      connection.send(message.createErrorReply(QStringLiteral("org.freedesktop.DBus.Error.AccessDenied"),
                                               QStringLiteral("not allowed")));
      return true;
    }
    int ends[2];
    EXPECT_EQ(::pipe2(&ends[0], O_CLOEXEC), 0);
    locks_.push_back(ends[0]);
    const QDBusUnixFileDescriptor lock(ends[1]);
    ::close(ends[1]);
    connection.send(message.createReply(QVariant::fromValue(lock)));
    return true;
  }

  /// Locks that somebody has open.
  [[nodiscard]] int Held() const {
    int held = 0;
    for (const int lock : locks_) {
      pollfd state{lock, POLLIN, 0};
      if (::poll(&state, 1, 0) == 0) ++held;
    }
    return held;
  }

  std::vector<std::string> Calls;
  std::string Refused;  ///< the beginning of what is refused; empty: nothing is

 private:
  QDBusConnection bus_;
  std::vector<int> locks_;
};

}  // namespace kestrune::test
