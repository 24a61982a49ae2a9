#pragma once

#include <array>
#include <functional>
#include <string_view>
#include <vector>

#include "presenters/Mp3Options.h"
#include "windows/OptionDialog.h"

class QCheckBox;
class QComboBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QSlider;
class QTabWidget;

namespace kestrune::windows {

class UpDown;

/// The options of the format MP3, on the pages of tabMP3.
class frmFormatMP3 final : public OptionDialog {
 public:
  /// `options` must outlive the window; the constructor loads them.
  explicit frmFormatMP3(presenters::Mp3Options& options, QWidget* parent = nullptr);

  void Refresh();

 protected:
  bool cmdOK() override;

 private:
  struct Choice {
    QComboBox* List = nullptr;
    presenters::ChoiceList presenters::Mp3Controls::*Shown = nullptr;
  };
  struct Box {
    QCheckBox* Check = nullptr;
    bool presenters::Mp3Controls::*Shown = nullptr;
  };
  struct Number {
    QLineEdit* Line = nullptr;
    UpDown* Arrows = nullptr;
  };
  struct FilterControls {
    QLabel* Width = nullptr;
    std::array<Number, 2> Numbers;  ///< frequency and width
  };

  QWidget* AddPage(const char* title);
  void FillSoundPage(QWidget& page);
  void FillBitratePage(QWidget& page);
  void FillFilterPage(QWidget& page);
  void FillStreamPage(QWidget& page);

  QComboBox* AddChoice(const char* name, std::string_view tip, std::string_view accessible,
                       presenters::ChoiceList presenters::Mp3Controls::*shown,
                       void (presenters::Mp3Options::*choose)(int), QWidget& parent);
  QCheckBox* AddBox(const char* name, const char* caption, std::string_view tip,
                    bool presenters::Mp3Controls::*shown, void (presenters::Mp3Options::*check)(bool),
                    QWidget& parent);
  QSlider* AddSlider(const char* name, std::string_view tip, int most,
                     void (presenters::Mp3Options::*slide)(int), QWidget& parent);
  Number AddNumber(const char* line, const char* arrows, std::string_view tip, std::string_view accessible,
                   const std::function<void(std::string_view text)>& typed,
                   const std::function<void(int direction)>& step, QWidget& parent);
  Number AddSpinValue(const char* line, const char* arrows, std::string_view tip, QLabel& label,
                      void (presenters::Mp3Options::*typed)(std::string_view),
                      void (presenters::Mp3Options::*step)(int), QWidget& parent);
  FilterControls AddFilter(QGroupBox& frame, QCheckBox& box, const char* widthName, const char* widthCaption,
                           std::string_view which, const std::array<const char*, 4>& names,
                           presenters::FilterNumber first);
  void ShowFilter(const FilterControls& filter, presenters::FilterNumber first, bool visible);

  presenters::Mp3Options& options_;
  QTabWidget* tabMP3_;
  std::vector<Choice> choices_;
  std::vector<Box> boxes_;
  QSlider* sldCurrentBitrate_ = nullptr;
  QLabel* lblCurrentBitrate_ = nullptr;
  QSlider* sldEncoderQuality_ = nullptr;
  QGroupBox* frmMaxVBR_ = nullptr;
  QSlider* sldMaxVBRBitrate_ = nullptr;
  QLabel* lblMaxVBRBitrate_ = nullptr;
  QLabel* lblVBRQuality_ = nullptr;
  Number vbrQuality_;
  QLabel* lblABR_ = nullptr;
  Number abr_;
  QGroupBox* frmAdvanced_ = nullptr;
  QCheckBox* chkWriteVBRHeader_ = nullptr;
  QCheckBox* chkEnforceVBRMinBitrate_ = nullptr;
  FilterControls highPass_;
  FilterControls lowPass_;
};

}  // namespace kestrune::windows
