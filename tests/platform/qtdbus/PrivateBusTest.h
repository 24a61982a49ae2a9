#pragma once

#include <QDBusConnection>
#include <QString>
#include <string>

#include <gtest/gtest.h>

#include "../posix/TemporaryFolder.h"
#include "support/ChildProcess.h"
#include "support/Pump.h"

namespace kestrune::test {

/// Each test has a message bus of its own; without its daemon they are skipped.
class PrivateBusTest : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!ChildProcess::Installed("dbus-daemon")) GTEST_SKIP() << "no message bus here";
    Application();
    address_ = "unix:path=" + (folder_ / "bus");
    daemon_ = ChildProcess({"dbus-daemon", "--session", "--nofork", "--nopidfile", "--address=" + address_},
                           {}, folder_ / "output");
    ASSERT_TRUE(PumpUntil([this] { return Connect().isConnected(); })) << FileText(folder_ / "output");
  }
  void TearDown() override { QDBusConnection::disconnectFromBus(QStringLiteral("client")); }

  [[nodiscard]] QString Address() const { return QString::fromStdString(address_); }
  [[nodiscard]] QDBusConnection Connect() const {
    QDBusConnection bus = QDBusConnection::connectToBus(Address(), QStringLiteral("client"));
    if (!bus.isConnected()) QDBusConnection::disconnectFromBus(QStringLiteral("client"));
    return bus;
  }

  TemporaryFolder folder_;
  std::string address_;
  ChildProcess daemon_;
};

}  // namespace kestrune::test
