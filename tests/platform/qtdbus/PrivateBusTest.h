#pragma once

#include <QDBusConnection>
#include <QString>
#include <optional>

#include <gtest/gtest.h>

#include "../posix/TemporaryFolder.h"
#include "support/PrivateBus.h"
#include "support/Pump.h"

namespace kestrune::test {

/// Each test has a message bus of its own; without its daemon they are skipped.
class PrivateBusTest : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!PrivateBus::Installed()) GTEST_SKIP() << "no message bus here";
    Application();
    bus_.emplace(folder_.Path());
    ASSERT_TRUE(PumpUntil([this] { return Connect().isConnected(); })) << FileText(bus_->Log());
  }
  void TearDown() override { QDBusConnection::disconnectFromBus(QStringLiteral("client")); }

  [[nodiscard]] QString Address() const { return QString::fromStdString(bus_->Address()); }
  [[nodiscard]] QDBusConnection Connect() const {
    QDBusConnection bus = QDBusConnection::connectToBus(Address(), QStringLiteral("client"));
    if (!bus.isConnected()) QDBusConnection::disconnectFromBus(QStringLiteral("client"));
    return bus;
  }

  TemporaryFolder folder_;
  std::optional<PrivateBus> bus_;
};

}  // namespace kestrune::test
