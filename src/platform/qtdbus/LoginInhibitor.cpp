#include "platform/qtdbus/LoginInhibitor.h"

#include <QDBusMessage>
#include <QDBusPendingReply>
#include <utility>

namespace kestrune::platform {
namespace {

const QString kAll = QStringLiteral("sleep:idle");
const QString kIdleAlone = QStringLiteral("idle");

}  // namespace

LoginInhibitor::LoginInhibitor(QDBusConnection bus, std::function<void()> refused)
    : bus_(std::move(bus)), refused_(std::move(refused)) {}

void LoginInhibitor::Hold(std::string_view why) {
  if (wanted_) return;
  wanted_ = true;
  why_ = QString::fromUtf8(why.data(), static_cast<qsizetype>(why.size()));
  Ask(kAll);
}

void LoginInhibitor::Release() {
  wanted_ = false;
  asked_.reset();
  lock_ = {};
}

void LoginInhibitor::Ask(const QString& what) {
  if (!bus_.isConnected()) return refused_();
  QDBusMessage call = QDBusMessage::createMethodCall(
      QStringLiteral("org.freedesktop.login1"), QStringLiteral("/org/freedesktop/login1"),
      QStringLiteral("org.freedesktop.login1.Manager"), QStringLiteral("Inhibit"));
  call << what << QStringLiteral("Kestrune") << why_ << QStringLiteral("block");
  // The service is not to be started for this, and nobody is to be asked for a password.
  call.setAutoStartService(false);
  call.setInteractiveAuthorizationAllowed(false);
  asked_ = std::make_unique<QDBusPendingCallWatcher>(bus_.asyncCall(call));
  QObject::connect(asked_.get(), &QDBusPendingCallWatcher::finished, asked_.get(),
                   [this, what] { Answered(what); });
}

void LoginInhibitor::Answered(const QString& what) {
  // The watcher is what calls, so it goes later.
  QDBusPendingCallWatcher* const watcher = asked_.release();
  watcher->deleteLater();
  const QDBusPendingReply<QDBusUnixFileDescriptor> reply = *watcher;
  if (!reply.isError()) {
    lock_ = reply.value();
  } else if (what == kAll) {
    Ask(kIdleAlone);
  } else {
    refused_();
  }
}

}  // namespace kestrune::platform
