#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "config/formats/BitrateTable.h"
#include "config/settings/SettingsDoor.h"
#include "presenters/ChoiceList.h"
#include "presenters/SpinRange.h"

namespace kestrune::presenters {

/// Positions 0 to 14.
[[nodiscard]] const config::BitrateTable& Mp3Bitrates();

inline constexpr SpinRange kVbrQualityRange{0, 9, 1};
inline constexpr SpinRange kTargetBitrateRange{4, 320, 1};
/// For the four filter numbers. It is wider than what their fields hold; any text can be typed anyway.
inline constexpr SpinRange kFilterRange{0, 48000, 10};

/// The four filter numbers, in the order in which they are read.
enum class FilterNumber : std::uint8_t { HFiltF, HFiltW, LFiltF, LFiltW };
inline constexpr std::size_t kFilterNumbers = 4;

/// A text box for a number.
struct NumberText {
  std::string Text;
  bool Enabled = true;
};

/// What the MP3 option window shows. Controls that are shown and hidden together share a flag; text boxes stay, and
/// are enabled and disabled instead.
struct Mp3Controls {
  ChoiceList cboFrequency;
  ChoiceList cboChannels;
  ChoiceList cboTypeStereo;
  ChoiceList cboCodingMethod;
  ChoiceList cboATHControl;
  ChoiceList cboDeEmphasis;
  int CurrentBitrate = 0;  ///< position of sldCurrentBitrate
  std::string lblCurrentBitrate;
  int EncoderQuality = 0;  ///< sldEncoderQuality, 0 to 9
  int MaxVBRBitrate = 0;   ///< position of sldMaxVBRBitrate
  std::string lblMaxVBRBitrate;
  NumberText txtVbrQ;
  NumberText txtABR;
  std::array<NumberText, kFilterNumbers> Filters;  ///< by FilterNumber

  bool chkWriteVBRHeader = false;
  bool chkEnforceVBRMinBitrate = false;
  bool chkCRCChecksums = false;
  bool chkISOComply = false;
  bool chkDiffBlockTypes = false;
  bool chkShortBlocks = false;
  bool chkBitReservoir = false;
  bool chkHFilt = false;
  bool chkLFilt = false;

  bool VbrQualityVisible = true;  ///< lblVBRQuality, udVbrQ
  bool AbrVisible = true;         ///< lblABR, udABR
  bool VbrVisible = true;         ///< frmMaxVBR, frmAdvanced and what they hold
  bool HighPassVisible = true;    ///< udHFiltF, udHFiltW, lblHighWidth
  bool LowPassVisible = true;     ///< udLFiltF, udLFiltW, lblLowWidth
};

/// The rules of the MP3 option window. Methods named for a control are what the user does with it. Nothing is
/// validated, but a filter number that its field cannot hold keeps `cmdOK` from doing anything.
class Mp3Options {
 public:
  /// The references must outlive this object.
  explicit Mp3Options(config::SettingsDoor& settings);

  [[nodiscard]] const Mp3Controls& Controls() const { return controls_; }
  /// Starts from the record of the running program.
  void Load();

  void cboFrequency(int row) { controls_.cboFrequency.Select(row); }
  /// Leaves the stereo type as it is, and visible.
  void cboChannels(int row) { controls_.cboChannels.Select(row); }
  void cboTypeStereo(int row) { controls_.cboTypeStereo.Select(row); }
  void cboCodingMethod(int row);
  void cboATHControl(int row) { controls_.cboATHControl.Select(row); }
  void cboDeEmphasis(int row) { controls_.cboDeEmphasis.Select(row); }
  void CurrentBitrate(int position);
  void EncoderQuality(int value);
  void MaxVBRBitrate(int position);
  /// A typed number is taken, clamped to the range; any other text leaves the last number in force.
  void txtVbrQ(std::string_view text);
  void txtABR(std::string_view text);
  /// The user leaves the text box: it shows the number in force.
  void ShowSpinValues();
  void StepVbrQ(int direction);
  void StepABR(int direction);
  void txtFilter(FilterNumber number, std::string_view text);
  void StepFilter(FilterNumber number, int direction);
  void chkWriteVBRHeader(bool checked) { controls_.chkWriteVBRHeader = checked; }
  void chkEnforceVBRMinBitrate(bool checked) { controls_.chkEnforceVBRMinBitrate = checked; }
  void chkCRCChecksums(bool checked) { controls_.chkCRCChecksums = checked; }
  void chkISOComply(bool checked) { controls_.chkISOComply = checked; }
  void chkDiffBlockTypes(bool checked) { controls_.chkDiffBlockTypes = checked; }
  void chkShortBlocks(bool checked) { controls_.chkShortBlocks = checked; }
  void chkBitReservoir(bool checked) { controls_.chkBitReservoir = checked; }
  void chkHFilt(bool checked);
  void chkLFilt(bool checked);

  /// Takes the choices over into the running program and stores them. True if they were stored: the window closes.
  /// False, with nothing taken over, if the text of a filter is no number: FieldToMend names the text box, and that one
  /// is enabled whether or not its filter is on.
  [[nodiscard]] bool cmdOK();
  [[nodiscard]] std::string_view FieldToMend() const { return fieldToMend_; }

 private:
  [[nodiscard]] NumberText& Filter(FilterNumber number) {
    return controls_.Filters[static_cast<std::size_t>(number)];
  }
  [[nodiscard]] bool ReadFilters(config::FormatMP3& record);

  config::SettingsDoor& settings_;
  config::FormatMP3 record_;
  Mp3Controls controls_;
  std::string_view fieldToMend_;
};

}  // namespace kestrune::presenters
