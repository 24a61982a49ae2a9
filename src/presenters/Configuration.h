#pragma once

#include <array>
#include <bitset>
#include <cstddef>
#include <map>
#include <string>
#include <string_view>

#include "config/settings/Settings.h"
#include "presenters/ConfigurationAccess.h"
#include "presenters/ConfigurationControls.h"
#include "presenters/FilenameFormatSelect.h"
#include "presenters/FormatOptions.h"
#include "presenters/Mp3Options.h"
#include "presenters/OggOptions.h"
#include "presenters/SpinRange.h"

namespace kestrune::presenters {

inline constexpr SpinRange kAGCLevelRange{-90, 0, 1};    ///< dB
inline constexpr SpinRange kAGCAttackRange{50, 200, 1};  ///< milliseconds
inline constexpr SpinRange kShelfSongsRange{0, config::kMostShelfSongs, 1};
inline constexpr SpinRange kShelfMegabytesRange{1, config::kMostShelfMegabytes, 50};

/// The rules of the configuration window and of the windows that open from it. A save changes the settings whose
/// controls the user has touched since Load, and no other; the untouched controls follow the settings. The file format
/// alone takes effect as soon as it is chosen, and no cancel undoes that. Methods named for a control are what the
/// user does with it.
class Configuration {
 public:
  explicit Configuration(ConfigurationAccess access);
  Configuration(const Configuration&) = delete;
  Configuration& operator=(const Configuration&) = delete;

  [[nodiscard]] const ConfigurationControls& Controls() const { return controls_; }
  [[nodiscard]] const config::SettingsSection& Section() const { return access_.Settings.Section(); }
  /// Whether a close by the close box asks first. What is typed or spun does not count.
  [[nodiscard]] bool Dirty() const { return dirty_; }

  /// Fills the window, and prepares the idle capture slot too.
  void Load();
  /// The same for the first run, in which a save stores every setting of the window.
  void LoadFirst();
  /// Shows what has been changed elsewhere since Load in the controls that the user has not touched, and the room on
  /// the disks; a window calls it at each of its refreshes.
  void Follow();

  void cboMinLength(int row);
  void cboMaxLength(int row);
  void cboSongDelay(int row);
  void cboDevice(int row);
  /// Takes effect at once: stops what is being recorded if the format differs, and prepares the idle slot.
  void cboFileFormat(int row);
  void txtFileDir(std::string_view text);
  void txtFilenameFormat(std::string_view text);
  void chkAGCEnabled(bool checked);
  void txtAGCLowLevel(std::string_view text);
  void txtAGCHighLevel(std::string_view text);
  void txtAGCAttackTime(std::string_view text);
  void StepAGCLowLevel(int direction);
  void StepAGCHighLevel(int direction);
  void StepAGCAttackTime(int direction);
  void chkDuplicates(bool checked);
  void chkTaskBarMinimized(bool checked);
  /// Takes effect with a save, not in the settings but in the desktop's folder of programs to start.
  void chkAutostart(bool checked);
  void chkWatch(bool checked);
  void cboCutPlacement(int row);
  void txtShelfFolder(std::string_view text);
  void txtShelfSongs(std::string_view text);
  void txtShelfMegabytes(std::string_view text);
  void StepShelfSongs(int direction);
  void StepShelfMegabytes(int direction);
  void chkHints(bool checked);
  void chkFollowHints(bool checked);
  void chkNotifySongs(bool checked);
  void chkNotifyEvents(bool checked);
  void chkNotifyProblems(bool checked);
  void chkNotifyHints(bool checked);

  /// The id of the input device that is chosen in the window; empty if none is.
  [[nodiscard]] std::string ChosenInputId() const;

  /// Returns the folder that the chooser starts with.
  [[nodiscard]] std::string cmdBrowse();
  /// The chooser's answer up to its first zero character; empty if the user chose nothing.
  void FolderChosen(std::string_view folder);
  /// The same for the folder of the shelf; as long as it has none of its own, the chooser starts where recordings go.
  [[nodiscard]] std::string cmdBrowseShelf();
  void ShelfFolderChosen(std::string_view folder);

  /// The option window of the chosen format has closed: the idle slot is prepared with what it saved.
  void FormatOptionsClosed();

  /// Sets the defaults, but for folder, device and gain control, and leaves the format records alone. From then on
  /// every control counts as touched.
  void cmdDefault();

  /// Changes and stores the settings of the touched controls, and returns true: the window closes. Returns false,
  /// with nothing changed, after a message on the song lengths or on what else is refused, or if one of the numbers is no
  /// number; FieldToMend then names the text box, if there is one. Returns false, with the settings changed, after a
  /// message that they, or the start with the desktop, could not be stored. A list without a selected row leaves its setting as it is; only a song
  /// delay that was not on its list at Load becomes 0. The file format is always stored, since a choice that was
  /// cancelled may not be in the store yet.
  [[nodiscard]] bool cmdSave();
  /// The name of the text box whose text was refused; empty if none was.
  [[nodiscard]] std::string_view FieldToMend() const { return fieldToMend_; }

  /// The user closes the window by its close box. Asks if something was changed. True if it may close, which
  /// includes a save that stopped at the song lengths.
  [[nodiscard]] bool CloseBox();

  [[nodiscard]] FilenameFormatSelect& FilenameFormats() { return filenameFormats_; }
  [[nodiscard]] Mp3Options& Mp3() { return mp3_; }
  [[nodiscard]] OggOptions& Ogg() { return ogg_; }
  /// The rules of the option window of a format that has buttons alone; null for another code.
  [[nodiscard]] FormatOptions* Buttons(std::string_view fileFormat);

 private:
  struct Field;
  static constexpr std::size_t kFieldCount = 24;
  static const std::array<Field, kFieldCount> kFields;

  void FillDevices();
  void ShowRoom();
  /// Where a chooser of folders starts that shows `folder`.
  [[nodiscard]] std::string BrowseFrom(std::string folder);
  void Touch(std::string_view key);
  void Choose(std::string_view key, ChoiceList& list, int row);
  void Type(std::string_view key, std::string& control, std::string_view text);
  void TakeFileFormat();
  void ShowFormat();
  /// False after a message, and then nothing has been changed. What somebody else has made is replaced or removed only
  /// if the user agrees.
  [[nodiscard]] bool SaveAutostart();
  [[nodiscard]] bool MayReplace(const std::string& file, bool wanted);
  void Tell(std::string_view title, std::string_view text);

  ConfigurationAccess access_;
  ConfigurationControls controls_;
  config::Settings shown_;  ///< as of Load, or the last Follow
  std::bitset<kFieldCount> touched_;
  int beats_ = 0;                  ///< until the disks are asked again
  bool songDelayOffList_ = false;  ///< it was so at Load and has not been changed since
  bool first_ = false;
  bool dirty_ = false;
  bool autostartTouched_ = false;
  bool lengthsRefused_ = false;
  std::string_view fieldToMend_;
  FilenameFormatSelect filenameFormats_;
  Mp3Options mp3_;
  OggOptions ogg_;
  std::map<std::string_view, FormatOptions> buttons_;  ///< by the format's code
};

}  // namespace kestrune::presenters
