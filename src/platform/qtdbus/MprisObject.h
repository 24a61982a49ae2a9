#pragma once

#include <QDBusMessage>
#include <QString>
#include <QVariantMap>
#include <optional>
#include <string>
#include <utility>

#include "platform/MediaPlayer.h"

namespace kestrune::platform {

/// What a media player says of itself, and what it answers to calls: MPRIS 2, the interfaces org.mpris.MediaPlayer2 and
/// org.mpris.MediaPlayer2.Player of its version 2.2, without the bus. What cannot be said of a radio (length, position,
/// seeking, tracks) is answered as the standard has it for players without. A call and its arguments are a stranger's: whatever they
/// are, the answer is a reply or an error, and nothing but Show changes what is said.
class MprisObject {
 public:
  struct Look {
    std::string Name;     ///< as people read it: "Kestrune"
    std::string Picture;  ///< full path of the program's picture, empty for none
  };
  struct Answer {
    QDBusMessage Reply;
    std::optional<MediaCommand> Command = std::nullopt;  ///< what the caller asks for, if anything
  };

  explicit MprisObject(Look look) : look_(std::move(look)) {}

  /// What is said from now on. Returns the properties of the player that have changed by that.
  QVariantMap Show(const MediaState& state);

  /// Nothing for a call to a method that there is not.
  [[nodiscard]] std::optional<Answer> Take(const QDBusMessage& call) const;

  /// Both interfaces, as introspection describes them.
  [[nodiscard]] static QString Description();

 private:
  [[nodiscard]] QDBusMessage AnswerProperties(const QDBusMessage& call) const;
  [[nodiscard]] QVariantMap PropertiesOf(const QString& interface) const;
  [[nodiscard]] QVariantMap Metadata() const;

  const Look look_;
  MediaState state_;
  int track_ = 0;  ///< counts the songs; 0: none is known
};

}  // namespace kestrune::platform
