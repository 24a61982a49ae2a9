#include "platform/qtdbus/MprisObject.h"

#include <QDBusError>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QStringList>
#include <QUrl>
#include <algorithm>
#include <array>
#include <utility>

namespace kestrune::platform {
namespace {

const QString kRoot = QStringLiteral("org.mpris.MediaPlayer2");
const QString kPlayer = QStringLiteral("org.mpris.MediaPlayer2.Player");
const QString kProperties = QStringLiteral("org.freedesktop.DBus.Properties");

struct Method {
  const char* Interface;
  const char* Name;
  MediaCommand Command;
};
constexpr std::array kMethods{
    Method{"org.mpris.MediaPlayer2", "Raise", MediaCommand::Raise},
    Method{"org.mpris.MediaPlayer2", "Quit", MediaCommand::Quit},
    Method{"org.mpris.MediaPlayer2.Player", "Next", MediaCommand::Next},
    Method{"org.mpris.MediaPlayer2.Player", "Previous", MediaCommand::Previous},
    Method{"org.mpris.MediaPlayer2.Player", "Pause", MediaCommand::Pause},
    Method{"org.mpris.MediaPlayer2.Player", "PlayPause", MediaCommand::PlayPause},
    Method{"org.mpris.MediaPlayer2.Player", "Stop", MediaCommand::Stop},
    Method{"org.mpris.MediaPlayer2.Player", "Play", MediaCommand::Play},
};
/// What every player must have and a radio cannot do: accepted, without effect, as the standard asks.
constexpr std::array kWithoutEffect{"Seek", "SetPosition", "OpenUri"};

QString ToQt(const std::string& text) {
  return QString::fromStdString(text);
}

}  // namespace

QVariantMap MprisObject::Show(const MediaState& state) {
  if (state == state_) return {};
  const QVariantMap before = PropertiesOf(kPlayer);
  const bool sameSong =
      state.Title == state_.Title && state.Artist == state_.Artist && state.Album == state_.Album;
  state_ = state;
  if (!sameSong) ++track_;
  QVariantMap changed;
  const QVariantMap now = PropertiesOf(kPlayer);
  for (auto property = now.begin(); property != now.end(); ++property) {
    // A map of variants compares its object path as unequal, so the count of songs decides.
    const bool same =
        property.key() == QLatin1String("Metadata") ? sameSong : before[property.key()] == property.value();
    if (!same) changed[property.key()] = property.value();
  }
  return changed;
}

QVariantMap MprisObject::Metadata() const {
  if (state_.Title.empty() && state_.Artist.empty() && state_.Album.empty()) {
    return {
        {QStringLiteral("mpris:trackid"),
         QVariant::fromValue(QDBusObjectPath(QStringLiteral("/org/mpris/MediaPlayer2/TrackList/NoTrack")))}};
  }
  QVariantMap facts;
  facts[QStringLiteral("mpris:trackid")] =
      QVariant::fromValue(QDBusObjectPath(QStringLiteral("/org/kestrune/song/%1").arg(track_)));
  facts[QStringLiteral("xesam:title")] = ToQt(state_.Title);
  facts[QStringLiteral("xesam:artist")] = QStringList(ToQt(state_.Artist));
  facts[QStringLiteral("xesam:album")] = ToQt(state_.Album);
  if (!look_.Picture.empty()) {
    facts[QStringLiteral("mpris:artUrl")] =
        QUrl::fromLocalFile(ToQt(look_.Picture)).toString(QUrl::FullyEncoded);
  }
  return facts;
}

QVariantMap MprisObject::PropertiesOf(const QString& interface) const {
  if (interface == kRoot) {
    return {{QStringLiteral("CanQuit"), true},
            {QStringLiteral("CanRaise"), true},
            {QStringLiteral("HasTrackList"), false},
            {QStringLiteral("Identity"), ToQt(look_.Name)},
            {QStringLiteral("DesktopEntry"), QStringLiteral("kestrune")},
            {QStringLiteral("SupportedUriSchemes"), QStringList()},
            {QStringLiteral("SupportedMimeTypes"), QStringList()}};
  }
  if (interface != kPlayer) return {};
  return {{QStringLiteral("PlaybackStatus"),
           state_.Sounding ? QStringLiteral("Playing") : QStringLiteral("Paused")},
          {QStringLiteral("Rate"), 1.0},
          {QStringLiteral("MinimumRate"), 1.0},
          {QStringLiteral("MaximumRate"), 1.0},
          {QStringLiteral("Volume"), 1.0},
          {QStringLiteral("Position"), QVariant::fromValue(qlonglong{0})},
          {QStringLiteral("Metadata"), Metadata()},
          {QStringLiteral("CanGoNext"), state_.CanStep},
          {QStringLiteral("CanGoPrevious"), state_.CanStep},
          {QStringLiteral("CanPlay"), state_.CanSwitch},
          {QStringLiteral("CanPause"), state_.CanSwitch},
          {QStringLiteral("CanSeek"), false},
          {QStringLiteral("CanControl"), true}};
}

QDBusMessage MprisObject::AnswerProperties(const QDBusMessage& call) const {
  const QVariantList arguments = call.arguments();
  const QVariantMap properties = PropertiesOf(arguments.value(0).toString());
  if (call.member() == QLatin1String("GetAll")) return call.createReply(QVariant(properties));
  const QString name = arguments.value(1).toString();
  if (!properties.contains(name)) {
    return call.createErrorReply(QDBusError::UnknownProperty,
                                 QStringLiteral("There is no property %1.").arg(name));
  }
  // Rate and volume may be set, and stay what they are: a radio has none.
  if (call.member() == QLatin1String("Set")) {
    if (name == QLatin1String("Rate") || name == QLatin1String("Volume")) return call.createReply();
    return call.createErrorReply(QDBusError::PropertyReadOnly,
                                 QStringLiteral("%1 cannot be changed.").arg(name));
  }
  return call.createReply(QVariant::fromValue(QDBusVariant(properties[name])));
}

std::optional<MprisObject::Answer> MprisObject::Take(const QDBusMessage& call) const {
  const QString interface = call.interface();
  const QString name = call.member();
  if (interface == kProperties &&
      (name == QLatin1String("Get") || name == QLatin1String("GetAll") || name == QLatin1String("Set")))
    return Answer{.Reply = AnswerProperties(call)};
  if (interface == kPlayer && std::any_of(kWithoutEffect.begin(), kWithoutEffect.end(),
                                          [&](const char* one) { return name == QLatin1String(one); }))
    return Answer{.Reply = call.createReply()};
  const auto* const method = std::find_if(kMethods.begin(), kMethods.end(), [&](const Method& one) {
    return name == QLatin1String(one.Name) &&
           (interface.isEmpty() || interface == QLatin1String(one.Interface));
  });
  if (method == kMethods.end()) return std::nullopt;
  return Answer{.Reply = call.createReply(), .Command = method->Command};
}

QString MprisObject::Description() {
  return QStringLiteral(R"(
<interface name="org.mpris.MediaPlayer2">
  <method name="Raise"/>
  <method name="Quit"/>
  <property name="CanQuit" type="b" access="read"/>
  <property name="CanRaise" type="b" access="read"/>
  <property name="HasTrackList" type="b" access="read"/>
  <property name="Identity" type="s" access="read"/>
  <property name="DesktopEntry" type="s" access="read"/>
  <property name="SupportedUriSchemes" type="as" access="read"/>
  <property name="SupportedMimeTypes" type="as" access="read"/>
</interface>
<interface name="org.mpris.MediaPlayer2.Player">
  <method name="Next"/>
  <method name="Previous"/>
  <method name="Pause"/>
  <method name="PlayPause"/>
  <method name="Stop"/>
  <method name="Play"/>
  <method name="Seek"><arg direction="in" name="Offset" type="x"/></method>
  <method name="SetPosition">
    <arg direction="in" name="TrackId" type="o"/><arg direction="in" name="Position" type="x"/>
  </method>
  <method name="OpenUri"><arg direction="in" name="Uri" type="s"/></method>
  <property name="PlaybackStatus" type="s" access="read"/>
  <property name="Rate" type="d" access="readwrite"/>
  <property name="MinimumRate" type="d" access="read"/>
  <property name="MaximumRate" type="d" access="read"/>
  <property name="Volume" type="d" access="readwrite"/>
  <property name="Position" type="x" access="read">
    <annotation name="org.freedesktop.DBus.Property.EmitsChangedSignal" value="false"/>
  </property>
  <property name="Metadata" type="a{sv}" access="read"/>
  <property name="CanGoNext" type="b" access="read"/>
  <property name="CanGoPrevious" type="b" access="read"/>
  <property name="CanPlay" type="b" access="read"/>
  <property name="CanPause" type="b" access="read"/>
  <property name="CanSeek" type="b" access="read"/>
  <property name="CanControl" type="b" access="read"/>
</interface>
)");
}

}  // namespace kestrune::platform
