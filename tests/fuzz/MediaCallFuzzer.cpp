// Any program on the desktop's bus may call the media player with any method and any arguments. The first line of the input is the
// interface, the second the method, each further one an argument, its type in front; the rest of the texts are a song's. Every call gets a
// reply, an error, or none if there is no such method; none changes what the player says of itself.

#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QStringList>
#include <QVariantList>
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "base/Text.h"
#include "platform/qtdbus/MprisObject.h"

namespace {

using kestrune::platform::MediaState;
using kestrune::platform::MprisObject;

const QString kRoot = QStringLiteral("org.mpris.MediaPlayer2");
const QString kPlayer = QStringLiteral("org.mpris.MediaPlayer2.Player");
const QString kProperties = QStringLiteral("org.freedesktop.DBus.Properties");

void Require(bool holds) {
  if (!holds) std::abort();
}

QVariant Argument(const std::string& line) {
  const QString text = QString::fromStdString(line.empty() ? line : line.substr(1));
  switch (line.empty() ? ' ' : line.front()) {
    case 'x':
      return QVariant::fromValue(text.toLongLong());
    case 'u':
      return QVariant::fromValue(text.toUInt());
    case 'd':
      return QVariant::fromValue(text.toDouble());
    case 'b':
      return QVariant::fromValue(text == QLatin1String("true"));
    case 'o':
      return QVariant::fromValue(QDBusObjectPath(QLatin1String("/org/kestrune/song/1")));
    case 'v':
      return QVariant::fromValue(QDBusVariant(text));
    case 'y':
      return text.toUtf8();
    case 'a':
      return text.split(QLatin1Char(' '));
    case 'm':
      return QVariantMap{{text, text}};
    case 'n':
      return {};
    default:
      return text;
  }
}

QDBusMessage Call(const QString& interface, const QString& method, const QVariantList& arguments) {
  QDBusMessage call =
      QDBusMessage::createMethodCall(QStringLiteral("org.mpris.MediaPlayer2.kestrune"),
                                     QStringLiteral("/org/mpris/MediaPlayer2"), interface, method);
  call.setArguments(arguments);
  return call;
}

/// All that a client can read of an interface; a track is told by its path.
QVariantMap Said(const MprisObject& object, const QString& interface) {
  const auto answer = object.Take(Call(kProperties, QStringLiteral("GetAll"), {interface}));
  Require(answer && answer->Reply.type() == QDBusMessage::ReplyMessage && !answer->Command);
  Require(answer->Reply.arguments().size() == 1);
  QVariantMap all = answer->Reply.arguments().constFirst().toMap();
  const QVariantMap metadata = all.take(QStringLiteral("Metadata")).toMap();
  for (auto fact = metadata.begin(); fact != metadata.end(); ++fact) {
    const bool path = fact.key() == QLatin1String("mpris:trackid");
    all[fact.key()] = path ? QVariant(fact.value().value<QDBusObjectPath>().path()) : fact.value();
  }
  return all;
}

/// Each property alone is what all of them together say, and the types are the standard's.
void RequireEachProperty(const MprisObject& object) {
  for (const QString& interface : {kRoot, kPlayer}) {
    const auto answer = object.Take(Call(kProperties, QStringLiteral("GetAll"), {interface}));
    const QVariantMap all = answer->Reply.arguments().constFirst().toMap();
    Require(all.size() == (interface == kRoot ? 7 : 13));
    for (auto property = all.begin(); property != all.end(); ++property) {
      const auto one = object.Take(Call(kProperties, QStringLiteral("Get"), {interface, property.key()}));
      Require(one && one->Reply.type() == QDBusMessage::ReplyMessage);
      const QVariant value = one->Reply.arguments().constFirst().value<QDBusVariant>().variant();
      Require(value.metaType() == property.value().metaType());
    }
  }
}

void RequireAnswer(const MprisObject& object, const QDBusMessage& call) {
  const QVariantMap before = Said(object, kPlayer);
  const QVariantMap root = Said(object, kRoot);
  const auto answer = object.Take(call);
  Require(Said(object, kPlayer) == before && Said(object, kRoot) == root);
  if (!answer) {
    Require(call.interface() != kProperties ||
            (call.member() != QLatin1String("Get") && call.member() != QLatin1String("GetAll") &&
             call.member() != QLatin1String("Set")));
    return;
  }
  const auto type = answer->Reply.type();
  Require(type == QDBusMessage::ReplyMessage || type == QDBusMessage::ErrorMessage);
  if (!answer->Command) return;
  Require(type == QDBusMessage::ReplyMessage && answer->Reply.arguments().isEmpty());
  const QString described = QStringLiteral("<method name=\"%1\"").arg(call.member());
  Require(MprisObject::Description().contains(described));
  constexpr std::array kCommands{"Play", "Pause", "PlayPause", "Stop", "Next", "Previous", "Raise", "Quit"};
  Require(call.member() == QLatin1String(kCommands.at(static_cast<std::size_t>(*answer->Command))));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::vector<std::string> lines = kestrune::base::Split(std::string(data, data + size), '\n');
  if (lines.size() < 2) return 0;
  MprisObject object({.Name = "Kestrune", .Picture = "/usr/share/" + lines[1]});
  QVariantList arguments;
  for (std::size_t i = 2; i < lines.size() && i < 12; ++i) arguments << Argument(lines[i]);
  const QDBusMessage call =
      Call(QString::fromStdString(lines[0]), QString::fromStdString(lines[1]), arguments);
  RequireAnswer(object, call);

  MediaState state{.Title = lines.back(), .Artist = lines[0], .Album = lines[1], .Sounding = size % 2 == 0};
  const bool song = !state.Title.empty() || !state.Artist.empty() || !state.Album.empty();
  Require(object.Show(state).contains(QStringLiteral("Metadata")) == song);
  Require(object.Show(state).isEmpty());
  state.CanStep = true;
  Require(object.Show(state).keys() ==
          QStringList({QStringLiteral("CanGoNext"), QStringLiteral("CanGoPrevious")}));
  RequireAnswer(object, call);
  RequireEachProperty(object);
  return 0;
}
