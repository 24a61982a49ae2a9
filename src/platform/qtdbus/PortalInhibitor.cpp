#include "platform/qtdbus/PortalInhibitor.h"

#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingReply>
#include <QVariantMap>
#include <utility>

namespace kestrune::platform {
namespace {

const QString kPortal = QStringLiteral("org.freedesktop.portal.Desktop");

// What is inhibited, as bits: 1 is the end of the session, 2 another user's turn.
constexpr quint32 kSuspend = 4;
constexpr quint32 kIdle = 8;

}  // namespace

PortalInhibitor::PortalInhibitor(QDBusConnection bus) : bus_(std::move(bus)) {}

PortalInhibitor::~PortalInhibitor() {
  Release();
}

void PortalInhibitor::Hold(std::string_view why) {
  if (wanted_) return;
  wanted_ = true;
  // An answer that is still awaited serves this call as well.
  if (!bus_.isConnected() || asked_ != nullptr) return;
  QDBusMessage call = QDBusMessage::createMethodCall(
      kPortal, QStringLiteral("/org/freedesktop/portal/desktop"),
      QStringLiteral("org.freedesktop.portal.Inhibit"), QStringLiteral("Inhibit"));
  const QString reason = QString::fromUtf8(why.data(), static_cast<qsizetype>(why.size()));
  const QString noWindow;
  call << noWindow << (kSuspend | kIdle) << QVariantMap{{QStringLiteral("reason"), reason}};
  asked_ = std::make_unique<QDBusPendingCallWatcher>(bus_.asyncCall(call));
  QObject::connect(asked_.get(), &QDBusPendingCallWatcher::finished, asked_.get(), [this] { Answered(); });
}

void PortalInhibitor::Answered() {
  // The watcher is what calls, so it goes later.
  QDBusPendingCallWatcher* const watcher = asked_.release();
  watcher->deleteLater();
  const QDBusPendingReply<QDBusObjectPath> reply = *watcher;
  if (reply.isError()) return;
  request_ = reply.value().path();
  if (!wanted_) Release();
}

void PortalInhibitor::Release() {
  wanted_ = false;
  if (request_.isEmpty()) return;
  QDBusMessage call = QDBusMessage::createMethodCall(kPortal, std::exchange(request_, {}),
                                                     QStringLiteral("org.freedesktop.portal.Request"),
                                                     QStringLiteral("Close"));
  // A portal that has gone has let go of it too.
  call.setAutoStartService(false);
  bus_.send(call);
}

}  // namespace kestrune::platform
