#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/Journal.h"
#include "config/settings/SettingKeys.h"
#include "config/settings/Settings.h"
#include "config/settings/SettingsSection.h"
#include "platform/Environment.h"
#include "platform/Files.h"

namespace kestrune::config {

/// How a changed setting takes effect in the running program.
struct SettingEffects {
  /// Runs before another file format is taken over. It must stop what is being recorded or waited for, and do
  /// nothing while the recorder is idle. Other settings may change meanwhile.
  std::function<void()> StopRecording = [] {};
  /// Runs after the file format or one of the format records has changed: the idle capture slot is to be prepared.
  std::function<void()> PrepareFormat = [] {};
  /// Runs after another input device has been taken over.
  std::function<void()> DeviceChanged = [] {};
};

/// What became of a wish to change settings.
struct SettingOutcome {
  /// The setting that was refused; empty if nothing was. If one setting is refused, none is changed.
  std::string Key;
  /// Why, as the end of a sentence that begins with the value, such as "is neither 0 nor 1".
  std::string Reason;
  /// One line that names the setting, the refused value and the reason; empty if nothing was refused.
  std::string Refusal;
  /// One line on a change that was made but will not work as things are, as with a folder that cannot be written
  /// to; empty if there is nothing to say. It is in the log already.
  std::string Warning;
  /// False if the running program has the new values, but the store could not be written. The log says so.
  bool Saved = true;

  [[nodiscard]] bool Done() const { return Refusal.empty(); }
};

/// How long a change lasts.
enum class SettingLife : std::uint8_t {
  Stored,   ///< beyond this run: it is in the store when the call returns, or will be at exit
  ThisRun,  ///< until the program ends, or until a later change of the same setting is stored
};

/// The one way in which a setting changes, whoever wishes it: the configuration window, an option window, the main
/// window, the control socket or the program itself. A change is checked as a whole, taken over field by field,
/// stored, and takes effect, in this order.
class SettingsDoor {
 public:
  /// What the door works on. All of it must outlive the door.
  struct Place {
    config::Settings& Settings;  ///< of the running program; nothing else may write it
    const SettingsSection& Section;
    const platform::Environment& Environment;
    platform::Files& Files;
    base::Journal& Log;
  };

  SettingsDoor(const Place& place, SettingEffects effects);

  [[nodiscard]] const Settings& Current() const { return place_.Settings; }
  [[nodiscard]] const SettingsSection& Section() const { return place_.Section; }

  /// Reads every setting from the store. Nothing takes effect by that.
  void Load();

  /// The present value as text, or nothing if there is no such key. Keys are compared without regard to case.
  [[nodiscard]] std::optional<std::string> Get(std::string_view key) const;

  /// A command from outside: changes one setting to the value of a text. Refused are settings that
  /// follow from something else, and a folder that cannot be written to.
  [[nodiscard]] SettingOutcome Set(std::string_view key, std::string_view value);

  /// Changes the settings of these keys to their values in `wished`, in the order of the keys, which is also the
  /// order in which they are stored. A key that does not exist is passed over.
  SettingOutcome Change(const Settings& wished, const std::vector<std::string_view>& keys,
                        SettingLife life = SettingLife::Stored);
  /// The same for the record of one format, without its effect: whoever opened the option window prepares the idle
  /// capture slot when that window closes.
  SettingOutcome ChangeFormat(const Settings& wished, std::string_view fileFormat);

  /// Stores the settings that are stored only when the program ends. False if the store could not be written; the
  /// log says so.
  bool SaveAtExit();

 private:
  using Rows = std::vector<const SettingKey*>;

  SettingOutcome Take(const Settings& wishes, const Rows& rows, SettingLife life, bool preparesFormat);
  /// Checks the values of the rows in `wished`, and corrects them.
  [[nodiscard]] SettingOutcome Checked(Settings& wished, const Rows& rows) const;
  [[nodiscard]] bool Save(const Rows& rows, SettingStored when);
  void WarnOfFolder(SettingOutcome& outcome);

  Place place_;
  SettingEffects effects_;
};

}  // namespace kestrune::config
