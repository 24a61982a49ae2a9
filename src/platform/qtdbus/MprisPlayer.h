#pragma once

#include <QDBusConnection>
#include <QDBusVirtualObject>
#include <QString>
#include <string>

#include "platform/MediaPlayer.h"
#include "platform/qtdbus/MprisObject.h"

namespace kestrune::platform {

/// The program as a media player on the desktop's message bus (MPRIS 2).
class MprisPlayer final : public MediaPlayer, private QDBusVirtualObject {
 public:
  struct Identity {
    std::string Name;  ///< as people read it: "Kestrune"
    /// Which of several units this is; empty for the only one. It becomes part of the name on the bus.
    std::string Unit;
    std::string Picture;  ///< full path of the program's picture, empty for none
  };

  explicit MprisPlayer(const Identity& identity, QDBusConnection bus = QDBusConnection::sessionBus());
  ~MprisPlayer() override;
  MprisPlayer(const MprisPlayer&) = delete;
  MprisPlayer& operator=(const MprisPlayer&) = delete;

  void Show(const MediaState& state) override;

 private:
  [[nodiscard]] QString introspect(const QString& path) const override;
  bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

  QDBusConnection bus_;
  QString service_;  ///< the name on the bus, empty without one
  MprisObject object_;
};

}  // namespace kestrune::platform
