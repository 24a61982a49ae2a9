#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

#include "base/Result.h"
#include "recorder/Door.h"
#include "recorder/UpdateCommand.h"

namespace kestrune::recorder {

class Kestrune;

/// What a person, or a program acting for one, can ask of a unit: each call asks at the door and says there
/// whether the unit can do it now. A refusal names what stands in the way and what to do about it.
///
/// While the unit starts, a wish is refused at once, and once it closes, when its turn comes; only the close itself
/// is taken at any time.
class Wishes {
 public:
  using Answered = Door::Answered;

  /// Both must outlive the object.
  Wishes(Kestrune& unit, Door& door) : unit_(unit), door_(door) {}

  /// The two buttons; refused where the button is disabled.
  void Record(Answered answered = {});
  void Stop(Answered answered = {});
  /// Refused while recording keeps the channel, and while the radio is lost; the tuned channel is tuned already.
  void Tune(std::int16_t channel, Answered answered = {});
  /// Refused, with a sound, while recording forbids it, and while the radio is lost.
  void Mute(bool on, Answered answered = {});
  void ToggleMute(Answered answered = {});
  /// Keeps the song that plays, at its end; refused while none is captured.
  void KeepCurrent(Answered answered = {});
  /// Keeps a song of the shelf: by its number, of which 1 is the newest, or by its path. Refused as Shelving refuses.
  void Keep(std::size_t number, Answered answered = {});
  void KeepFile(std::string path, Answered answered = {});
  void ReloadChannels(Answered answered = {});
  void ChangeSetting(std::string key, std::string value, Answered answered = {});
  /// Passes on the radio's identifier, which may be empty. If it is not known yet the radio is asked for it, for
  /// 1.5 s at most. A refused wish has no answer.
  void AskForRadioID(std::function<void(const std::string& radioID)> answered);
  /// Asks the maker's server for a newer version; other wishes are served meanwhile.
  void AskForUpdate(std::function<void(const base::Result&, const UpdateAnswer&)> answered);
  /// Anything else that needs a unit that is up.
  void Ask(Door::Wish wish, Answered answered = {});
  /// The close of the program. It also ends the waits of a start and of an update check, and message boxes, so that
  /// it need not wait for them; the radio's other waits are short.
  void Close(Answered answered = {});

 private:
  [[nodiscard]] base::Result TuneNow(std::int16_t channel);
  [[nodiscard]] base::Result MuteNow(bool on);

  Kestrune& unit_;
  Door& door_;
};

}  // namespace kestrune::recorder
