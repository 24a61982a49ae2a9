#include "platform/qtdbus/MprisPlayer.h"

#include <QCoreApplication>
#include <QStringList>
#include <optional>
#include <utility>

namespace kestrune::platform {
namespace {

const QString kObject = QStringLiteral("/org/mpris/MediaPlayer2");

/// The name on the bus: a part may have letters, digits and "_", and begins with no digit.
QString ServiceOf(const std::string& unit) {
  QString service = QStringLiteral("org.mpris.MediaPlayer2.kestrune");
  if (unit.empty()) return service;
  QString part;
  for (const char letter : unit) {
    const bool allowed = (letter >= '0' && letter <= '9') || (letter >= 'a' && letter <= 'z') ||
                         (letter >= 'A' && letter <= 'Z');
    part += allowed ? QChar::fromLatin1(letter) : QLatin1Char('_');
  }
  return service + QStringLiteral(".unit") + part;
}

}  // namespace

MprisPlayer::MprisPlayer(const Identity& identity, QDBusConnection bus)
    : bus_(std::move(bus)), object_({.Name = identity.Name, .Picture = identity.Picture}) {
  if (!bus_.isConnected() || !bus_.registerVirtualObject(kObject, this)) return;
  // Another person's program, or one with another data folder, may have the name.
  const QString name = ServiceOf(identity.Unit);
  const QString another = name + QStringLiteral(".instance%1").arg(QCoreApplication::applicationPid());
  for (const QString& service : {name, another}) {
    if (!bus_.registerService(service)) continue;
    service_ = service;
    return;
  }
}

MprisPlayer::~MprisPlayer() {
  if (!service_.isEmpty()) bus_.unregisterService(service_);
  bus_.unregisterObject(kObject);
}

void MprisPlayer::Show(const MediaState& state) {
  const QVariantMap changed = object_.Show(state);
  if (service_.isEmpty() || changed.isEmpty()) return;
  QDBusMessage signal = QDBusMessage::createSignal(kObject, QStringLiteral("org.freedesktop.DBus.Properties"),
                                                   QStringLiteral("PropertiesChanged"));
  signal << QStringLiteral("org.mpris.MediaPlayer2.Player") << changed << QStringList();
  bus_.send(signal);
}

bool MprisPlayer::handleMessage(const QDBusMessage& message, const QDBusConnection& connection) {
  const std::optional<MprisObject::Answer> answer = object_.Take(message);
  if (!answer) return false;
  connection.send(answer->Reply);
  if (answer->Command) Ask(*answer->Command);
  return true;
}

QString MprisPlayer::introspect(const QString& path) const {
  return path == kObject ? MprisObject::Description() : QString();
}

}  // namespace kestrune::platform
