#pragma once

#include <QDBusConnection>
#include <QDBusVirtualObject>
#include <QString>
#include <QVariantMap>
#include <string>

#include "platform/MediaPlayer.h"

namespace kestrune::platform {

/// The program as a media player on the desktop's message bus: MPRIS 2, the interfaces org.mpris.MediaPlayer2 and
/// org.mpris.MediaPlayer2.Player of its version 2.2. What cannot be said of a radio (length, position, seeking, tracks)
/// is answered as the standard has it for players without.
class MprisPlayer final : public MediaPlayer, private QDBusVirtualObject {
 public:
  struct Identity {
    std::string Name;  ///< as people read it: "Kestrune"
    /// Which of several units this is; empty for the only one. It becomes part of the name on the bus.
    std::string Unit;
    std::string Picture;  ///< full path of the program's picture, empty for none
  };

  explicit MprisPlayer(Identity identity, QDBusConnection bus = QDBusConnection::sessionBus());
  ~MprisPlayer() override;
  MprisPlayer(const MprisPlayer&) = delete;
  MprisPlayer& operator=(const MprisPlayer&) = delete;

  void Show(const MediaState& state) override;

 private:
  [[nodiscard]] QString introspect(const QString& path) const override;
  bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;
  [[nodiscard]] QDBusMessage AnswerProperties(const QDBusMessage& message) const;
  [[nodiscard]] QVariantMap PropertiesOf(const QString& interface) const;
  [[nodiscard]] QVariantMap Metadata() const;

  const Identity identity_;
  QDBusConnection bus_;
  QString service_;  ///< the name on the bus, empty without one
  MediaState state_;
  int track_ = 0;  ///< counts the songs; 0: none is known
};

}  // namespace kestrune::platform
