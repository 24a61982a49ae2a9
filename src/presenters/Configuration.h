#pragma once

#include <map>
#include <string>
#include <string_view>

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

/// The rules of the configuration window, and those of the windows that open from it. It shows the settings as
/// they were at Load, and writes them when they are saved; the file format alone takes effect when it is
/// chosen, and no cancel undoes that. Methods named for a control are what the user does with it.
class Configuration {
 public:
  explicit Configuration(ConfigurationAccess access);
  Configuration(const Configuration&) = delete;
  Configuration& operator=(const Configuration&) = delete;

  [[nodiscard]] const ConfigurationControls& Controls() const { return controls_; }
  [[nodiscard]] const config::SettingsSection& Section() const { return access_.Section; }
  /// Whether a close by the close box asks first. What is typed or spun does not count.
  [[nodiscard]] bool Dirty() const { return dirty_; }

  /// Fills the window; it prepares the idle capture slot too.
  void Load();

  void cboMinLength(int row);
  void cboMaxLength(int row);
  void cboSongDelay(int row);
  void cboDevice(int row);
  /// Takes effect at once: stops what is being recorded if the format differs, and prepares the idle slot.
  void cboFileFormat(int row);
  void txtFileDir(std::string_view text) { controls_.txtFileDir = text; }
  void txtFilenameFormat(std::string_view text) { controls_.txtFilenameFormat = text; }
  void chkAGCEnabled(bool checked);
  void txtAGCLowLevel(std::string_view text) { controls_.txtAGCLowLevel = text; }
  void txtAGCHighLevel(std::string_view text) { controls_.txtAGCHighLevel = text; }
  void txtAGCAttackTime(std::string_view text) { controls_.txtAGCAttackTime = text; }
  void StepAGCLowLevel(int direction);
  void StepAGCHighLevel(int direction);
  void StepAGCAttackTime(int direction);
  void chkDuplicates(bool checked);
  void chkTaskBarMinimized(bool checked) { controls_.chkTaskBarMinimized = checked; }

  /// Gives the folder that the chooser starts with.
  [[nodiscard]] std::string cmdBrowse();
  /// What came back from it, empty if the user chose nothing; it counts up to its first zero character.
  void FolderChosen(std::string_view folder);

  /// The option window of the chosen format has closed: the idle slot is prepared with what it saved.
  void FormatOptionsClosed();

  /// No format record, nor folder, device or gain control.
  void cmdDefault();

  /// Writes the settings and the store, and gives true: the window closes. False after the message on song
  /// lengths, or if a gain number is none; then nothing is written, and FieldToMend names the text box. A list
  /// without a selected row leaves its setting as it is, but for the song delay, which becomes 0.
  [[nodiscard]] bool cmdSave();
  /// Empty if no text is in the way.
  [[nodiscard]] std::string_view FieldToMend() const { return fieldToMend_; }

  /// The user closes the window by its close box. Asks if something was changed; true if it may close, also
  /// if the save that the user wanted stopped on the song lengths.
  [[nodiscard]] bool CloseBox();

  [[nodiscard]] FilenameFormatSelect& FilenameFormats() { return filenameFormats_; }
  [[nodiscard]] Mp3Options& Mp3() { return mp3_; }
  [[nodiscard]] OggOptions& Ogg() { return ogg_; }
  /// The rules of the option window of a format that has buttons alone; null for another code.
  [[nodiscard]] FormatOptions* Buttons(std::string_view fileFormat);

 private:
  void FillDevices();
  void Choose(ChoiceList& list, int row);
  void TakeFileFormat();
  void ShowFormat();

  ConfigurationAccess access_;
  ConfigurationControls controls_;
  bool dirty_ = false;
  std::string_view fieldToMend_;
  FilenameFormatSelect filenameFormats_;
  Mp3Options mp3_;
  OggOptions ogg_;
  std::map<std::string_view, FormatOptions> buttons_;  ///< by the format's code
};

}  // namespace kestrune::presenters
