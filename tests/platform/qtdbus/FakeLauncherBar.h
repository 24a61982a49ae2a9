#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QVariantMap>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <gtest/gtest.h>

namespace kestrune::test {

/// A launcher on the bus, as far as it hears the numbers of programs.
class FakeLauncherBar final : public QObject {
  Q_OBJECT

 public:
  explicit FakeLauncherBar(const QString& address)
      : bus_(QDBusConnection::connectToBus(address, QStringLiteral("launcher"))) {
    EXPECT_TRUE(bus_.connect({}, {}, QStringLiteral("com.canonical.Unity.LauncherEntry"),
                             QStringLiteral("Update"), QStringLiteral("sa{sv}"), this,
                             SLOT(Update(QString, QVariantMap))));
  }
  ~FakeLauncherBar() override { QDBusConnection::disconnectFromBus(QStringLiteral("launcher")); }
  FakeLauncherBar(const FakeLauncherBar&) = delete;
  FakeLauncherBar& operator=(const FakeLauncherBar&) = delete;

  /// The program, the number, and "shown" or "hidden". A number of another type than the launchers' is "?".
  std::vector<std::string> Heard;

 private slots:
  void Update(const QString& program, const QVariantMap& facts) {
    const QVariant count = facts[QStringLiteral("count")];
    const std::string number =
        count.typeId() == QMetaType::LongLong ? std::to_string(count.toLongLong()) : std::string("?");
    Heard.push_back(fmt::format("{} {} {}", program.toStdString(), number,
                                facts[QStringLiteral("count-visible")].toBool() ? "shown" : "hidden"));
  }

 private:
  QDBusConnection bus_;
};

}  // namespace kestrune::test
