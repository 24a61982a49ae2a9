#include <QApplication>
#include <QCheckBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <QSlider>
#include <QTabWidget>
#include <QToolButton>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <malloc.h>

#include "base/Text.h"
#include "config/formats/FormatTable.h"
#include "presenters/ConfigurationRig.h"
#include "support/Repetitions.h"
#include "windows/Controls.h"
#include "windows/OptionWindows.h"
#include "windows/frmFilenameFormatSelect.h"

namespace kestrune::test {
namespace {

using ::testing::IsEmpty;

struct Row {
  const char* Name;
  const char* Caption;
  const char* Tip;
};

void ExpectRows(QWidget& window, const std::vector<Row>& rows) {
  for (const Row& row : rows) {
    auto& control = Find<QWidget>(window, row.Name);
    EXPECT_EQ(control.toolTip(), row.Tip) << row.Name;
    if (*row.Caption != '\0') {
      EXPECT_EQ(control.property("text").toString(), row.Caption) << row.Name;
    }
  }
}

/// The captions of the frames around controls.
std::set<std::string> Frames(const QWidget& window) {
  std::set<std::string> captions;
  for (const QGroupBox* frame : window.findChildren<QGroupBox*>())
    captions.insert(frame->title().toStdString());
  return captions;
}

class FrmFormatTest : public ::testing::Test {
 protected:
  std::unique_ptr<QDialog> Make(std::string_view code) {
    return std::unique_ptr<QDialog>(windows::MakeOptionWindow(code, rig_.Window, nullptr));
  }

  ConfigurationRig rig_;
};

TEST_F(FrmFormatTest, EveryFormatHasAnOptionWindowAndNoOtherCodeHas) {
  for (const config::FormatRow& row : config::FormatTable()) {
    const auto window = Make(row.Code);
    ASSERT_NE(window, nullptr) << row.Code;
    EXPECT_EQ(window->objectName().toLower().toStdString(), "frmformat" + base::ToLower(row.Code));
  }
  for (const char* code : {"", "mp3", "AAC"}) EXPECT_EQ(Make(code), nullptr) << code;
}

TEST_F(FrmFormatTest, EveryOptionButtonReadsAsItsRulesSay) {
  for (const presenters::OptionWindow& design : presenters::OptionWindows()) {
    const std::string_view code = design.FileFormat;
    const std::unique_ptr<QDialog> window = Make(code);
    EXPECT_EQ(window->windowTitle().toStdString(), design.Caption);
    EXPECT_EQ(window->objectName().toStdString(), "frmFormat" + std::string(code));
    for (const presenters::OptionGroup& group : design.Groups) {
      EXPECT_EQ(Frames(*window).count(std::string(group.Frame)), 1U);
      for (std::size_t i = 0; i < group.Buttons.size(); ++i) {
        const std::string name = std::string(group.Name) + "_" + std::to_string(i);
        const auto& button = Find<QRadioButton>(*window, name.c_str());
        EXPECT_EQ(button.text().toStdString(), group.Buttons[i].Caption);
        EXPECT_EQ(button.toolTip().toStdString(), group.Buttons[i].Tip);
        EXPECT_EQ(button.isChecked(), group.Read(rig_.Settings) == group.Buttons[i].Value) << name;
      }
    }
    EXPECT_EQ(Find<QAbstractButton>(*window, "cmdCancel").text(), "Cancel");
  }
}

TEST_F(FrmFormatTest, EveryOptionButtonIsTakenOverByOk) {
  for (const presenters::OptionWindow& design : presenters::OptionWindows()) {
    const std::string_view code = design.FileFormat;
    for (const presenters::OptionGroup& group : presenters::FindOptionWindow(code)->Groups) {
      for (std::size_t i = 0; i < group.Buttons.size(); ++i) {
        const std::unique_ptr<QDialog> window = Make(code);
        window->show();
        auto& button =
            Find<QRadioButton>(*window, (std::string(group.Name) + "_" + std::to_string(i)).c_str());
        button.click();
        EXPECT_TRUE(button.isChecked());
        Press(*window, "cmdOK");
        EXPECT_FALSE(window->isVisible());
        EXPECT_EQ(group.Read(rig_.Settings), group.Buttons[i].Value);
      }
    }
  }
}

TEST_F(FrmFormatTest, CancelEscapeAndCloseBoxKeepNothing) {
  const config::Settings before = rig_.Settings;
  for (const char* code : {"RAW", "VOX", "WAV", "G726", "OGG", "FLAC", "OPUS", "MP3"}) {
    const std::string change = std::string(code) == "OGG"    ? "chkVbr"
                               : std::string(code) == "MP3"  ? "chkBitReservoir"
                               : std::string(code) == "FLAC" ? "optLevel_0"
                               : std::string(code) == "OPUS" ? "optBitrate_0"
                                                             : "optFrequency_0";
    for (int way = 0; way < 3; ++way) {
      const std::unique_ptr<QDialog> window = Make(code);
      window->show();
      Press(*window, change.c_str());
      if (way == 0) {
        Press(*window, "cmdCancel");
      } else if (way == 1) {
        QTest::keyClick(window.get(), Qt::Key_Escape);
      } else {
        EXPECT_TRUE(ClickCloseBox(*window));
      }
      EXPECT_FALSE(window->isVisible()) << code;
      EXPECT_EQ(rig_.Settings, before) << code;
    }
  }
  EXPECT_THAT(rig_.Saves(), IsEmpty());
  EXPECT_THAT(rig_.Dialogs.Shown, IsEmpty());
}

TEST_F(FrmFormatTest, OggHasItsTextsAndTips) {
  rig_.Settings.FormatOGG.VbrEnabled = true;
  const auto window = Make("OGG");
  EXPECT_EQ(window->windowTitle(), "Ogg Vorbis Options");
  ExpectRows(*window, {{"sldrBitrate", "", "Select encoding bitrate"},
                       {"lblBitrate", "Current nominal bitrate: 160 kbit", ""},
                       {"sldrMinBitrate", "", "Select minimum VBR bitrate"},
                       {"lblMinBitrate", "Current min bitrate: 128 kbit", ""},
                       {"sldrMaxBitrate", "", "Select maximum VBR bitrate"},
                       {"lblMaxBitrate", "Current max bitrate: 192 kbit", ""},
                       {"sldrQuality", "", "Select compression level for quality mode"},
                       {"chkVbr", "VBR Enabled", "Enable variable bit rate encoding"},
                       {"chkQuality", "Quality Enabled", "Enable quality mode"}});
  EXPECT_EQ(Find<QGroupBox>(*window, "frmQuality").title(), "Quality (Compression)");
  EXPECT_EQ(Find<QGroupBox>(*window, "frmOption").title(), "Options");
  for (const char* name : {"sldrBitrate", "sldrMinBitrate", "sldrMaxBitrate"}) {
    EXPECT_EQ(Find<QSlider>(*window, name).minimum(), 1);
    EXPECT_EQ(Find<QSlider>(*window, name).maximum(), 6);
  }
  EXPECT_EQ(Find<QSlider>(*window, "sldrQuality").minimum(), 0);
  EXPECT_EQ(Find<QSlider>(*window, "sldrQuality").maximum(), 1000);
  EXPECT_EQ(Find<QSlider>(*window, "sldrQuality").tickInterval(), 100);
}

TEST_F(FrmFormatTest, OggSlidersAreTakenOver) {
  rig_.Settings.FormatOGG.VbrEnabled = true;
  const auto window = Make("OGG");
  window->show();
  QTest::keyClick(&Find<QSlider>(*window, "sldrBitrate"), Qt::Key_End);
  QTest::keyClick(&Find<QSlider>(*window, "sldrMinBitrate"), Qt::Key_End);
  QTest::keyClick(&Find<QSlider>(*window, "sldrMaxBitrate"), Qt::Key_Home);
  EXPECT_EQ(Find<QLabel>(*window, "lblBitrate").text(), "Current nominal bitrate: 320 kbit");
  EXPECT_EQ(Find<QLabel>(*window, "lblMinBitrate").text(), "Current min bitrate: 320 kbit");
  EXPECT_EQ(Find<QLabel>(*window, "lblMaxBitrate").text(), "Current max bitrate: 112 kbit");
  EXPECT_EQ(Find<QSlider>(*window, "sldrMaxBitrate").accessibleDescription(), "112");
  Press(*window, "chkQuality");
  auto& quality = Find<QSlider>(*window, "sldrQuality");
  EXPECT_EQ(quality.value(), 4);
  quality.setValue(650);
  EXPECT_EQ(quality.accessibleDescription(), "6.5");
  Press(*window, "cmdOK");
  const config::FormatOGG& record = rig_.Settings.FormatOGG;
  EXPECT_EQ(record.Bitrate, 320);
  EXPECT_EQ(record.MinBitrate, 320);
  EXPECT_EQ(record.MaxBitrate, 112);
  EXPECT_EQ(record.Quality, 6);
  EXPECT_TRUE(record.QualityEnabled);
}

TEST_F(FrmFormatTest, OggHidesWhatDoesNotCount) {
  const auto window = Make("OGG");
  window->show();
  const auto visible = [&](const char* name) { return Find<QWidget>(*window, name).isVisible(); };
  const std::vector<const char*> limits{"sldrMinBitrate", "sldrMaxBitrate", "lblMinBitrate", "lblMaxBitrate"};
  for (const char* name : limits) EXPECT_FALSE(visible(name)) << name;
  EXPECT_TRUE(visible("frmVbr"));
  Press(*window, "chkVbr");
  for (const char* name : limits) EXPECT_TRUE(visible(name)) << name;
  Press(*window, "chkQuality");
  for (const char* name : limits) EXPECT_FALSE(visible(name)) << name;
  for (const char* name : {"chkVbr", "frmVbr", "sldrBitrate", "lblBitrate"})
    EXPECT_FALSE(visible(name)) << name;
  for (const char* name : {"frmQuality", "sldrQuality"}) EXPECT_TRUE(visible(name)) << name;
  Press(*window, "chkQuality");
  for (const char* name : {"chkVbr", "frmVbr", "sldrBitrate", "lblBitrate"})
    EXPECT_TRUE(visible(name)) << name;
  for (const char* name : {"frmQuality", "sldrQuality"}) EXPECT_FALSE(visible(name)) << name;
}

TEST_F(FrmFormatTest, AnOggBitrateBelowTheSliderCanBeMendedByTheFirstPosition) {
  rig_.Settings.FormatOGG.Bitrate = 96;
  const auto window = Make("OGG");
  window->show();
  EXPECT_EQ(Find<QLabel>(*window, "lblBitrate").text(), "Current nominal bitrate: 96 kbit");
  QTest::keyClick(&Find<QSlider>(*window, "sldrBitrate"), Qt::Key_Home);
  EXPECT_EQ(Find<QLabel>(*window, "lblBitrate").text(), "Current nominal bitrate: 112 kbit");
  Press(*window, "cmdOK");
  EXPECT_EQ(rig_.Settings.FormatOGG.Bitrate, 112);
}

TEST_F(FrmFormatTest, Mp3HasItsTextsAndTips) {
  const auto window = Make("MP3");
  EXPECT_EQ(window->windowTitle(), "MP3 Options");
  ExpectRows(
      *window,
      {{"cboFrequency", "", "Select sample frequency to use"},
       {"cboChannels", "", "Select number of channels to record"},
       {"cboTypeStereo", "", "Select type of stereo encoding to use"},
       {"sldCurrentBitrate", "", "Select bitrate to record"},
       {"lblCurrentBitrate", "Current bitrate: 160 kbit", ""},
       {"sldEncoderQuality", "", "Select the quality of encoding to use (use lower quality for slower PCs)"},
       {"cboCodingMethod", "", "Select variable bit rate encoding method"},
       {"txtVbrQ", "", "Select the quality of VBR encoding"},
       {"udVbrQ", "", "Select the quality of VBR encoding"},
       {"lblVBRQuality", "VBR Quality:", ""},
       {"txtABR", "", "Select target ABR bitrate"},
       {"udABR", "", "Select target ABR bitrate"},
       {"lblABR", "Target bitrate for ABR:", ""},
       {"sldMaxVBRBitrate", "", "Select the maximum bitrate to encode at"},
       {"lblMaxVBRBitrate", "Current bitrate: 160 kbit", ""},
       {"chkWriteVBRHeader", "Write VBR Header", "Write VBR header into MP3 file"},
       {"chkEnforceVBRMinBitrate", "Strictly enforce minimum bitrate", "Enforce minimum bitrate"},
       {"chkCRCChecksums", "Include CRC Checksums", "Include CRC error checking in MP3 file"},
       {"chkISOComply", "Comply as much as possible to ISO MPEG spec", "Select maximum ISO compliance"},
       {"chkDiffBlockTypes", "Allow block types to differ between channels",
        "Allow different block types in L/R channels"},
       {"chkShortBlocks", "Short blocks", "Allow short blocks"},
       {"chkBitReservoir", "Bit reservoir", "Allow bit reservoir in MP3 file"},
       {"cboATHControl", "", "Select type of ATH control"},
       {"cboDeEmphasis", "", "Select type of de-emphasis encoding"},
       {"chkHFilt", "Highpass filtering frequency (in Hz):", "Enable high pass filter"},
       {"txtHFiltF", "", "Select cutoff frequency of high pass filter"},
       {"udHFiltF", "", "Select cutoff frequency of high pass filter"},
       {"txtHFiltW", "", "Select width of high pass filter"},
       {"udHFiltW", "", "Select width of high pass filter"},
       {"lblHighWidth", "Width of Highpass filter (in Hz):", ""},
       {"chkLFilt", "Lowpass filtering frequency (in Hz):", "Enable low pass filter"},
       {"txtLFiltF", "", "Select cutoff frequency of low pass filter"},
       {"udLFiltF", "", "Select cutoff frequency of low pass filter"},
       {"txtLFiltW", "", "Select width of low pass filter"},
       {"udLFiltW", "", "Select width of low pass filter"},
       {"lblLowWidth", "Width of Lowpass filter (in Hz):", ""},
       {"cmdCancel", "Cancel", ""}});
  for (const char* caption : {"small file", "big file", "poor quality ", "good quality ", "better", "faster",
                              "Coding Method:", "ATH Control:", "De-emphasis :"}) {
    EXPECT_TRUE(HasLabel(*window, caption)) << caption;
  }
  for (const char* frame : {"Sample Rate", "Channels", "Bitrate", "Encoder Quality", "Maximum VBR Bitrate",
                            "HighPass Filter", "LowPass Filter"}) {
    EXPECT_EQ(Frames(*window).count(frame), 1U) << frame;
  }
  for (const char* name : {"sldCurrentBitrate", "sldMaxVBRBitrate"}) {
    EXPECT_EQ(Find<QSlider>(*window, name).minimum(), 0);
    EXPECT_EQ(Find<QSlider>(*window, name).maximum(), 14);
  }
  EXPECT_EQ(Find<QSlider>(*window, "sldEncoderQuality").minimum(), 0);
  EXPECT_EQ(Find<QSlider>(*window, "sldEncoderQuality").maximum(), 9);
}

TEST_F(FrmFormatTest, Mp3ListsShowTheRulesRows) {
  const auto window = Make("MP3");
  const presenters::Mp3Controls& shown = rig_.Window.Mp3().Controls();
  const std::vector<std::pair<const char*, const presenters::ChoiceList*>> lists{
      {"cboFrequency", &shown.cboFrequency},   {"cboChannels", &shown.cboChannels},
      {"cboTypeStereo", &shown.cboTypeStereo}, {"cboCodingMethod", &shown.cboCodingMethod},
      {"cboATHControl", &shown.cboATHControl}, {"cboDeEmphasis", &shown.cboDeEmphasis}};
  for (const auto& [name, list] : lists) {
    const auto& box = Find<QComboBox>(*window, name);
    ASSERT_EQ(static_cast<std::size_t>(box.count()), list->Rows.size()) << name;
    for (int row = 0; row < box.count(); ++row) {
      EXPECT_EQ(box.itemText(row).toStdString(), list->Rows[static_cast<std::size_t>(row)].Text);
    }
    EXPECT_EQ(box.currentIndex(), list->Row) << name;
  }
}

TEST_F(FrmFormatTest, EveryMp3ControlIsTakenOverByOk) {
  const auto window = Make("MP3");
  window->show();
  auto& tab = Find<QTabWidget>(*window, "tabMP3");
  tab.setCurrentIndex(0);
  ChooseRow(Find<QComboBox>(*window, "cboFrequency"), 6);
  ChooseRow(Find<QComboBox>(*window, "cboChannels"), 0);
  EXPECT_TRUE(Find<QWidget>(*window, "cboTypeStereo").isVisible()) << "Mono leaves it in sight";
  ChooseRow(Find<QComboBox>(*window, "cboTypeStereo"), 3);
  QTest::keyClick(&Find<QSlider>(*window, "sldCurrentBitrate"), Qt::Key_Home);
  QTest::keyClick(&Find<QSlider>(*window, "sldEncoderQuality"), Qt::Key_End);
  tab.setCurrentIndex(1);
  ChooseRow(Find<QComboBox>(*window, "cboCodingMethod"), 2);
  QTest::keyClick(&Find<QLineEdit>(*window, "txtVbrQ"), Qt::Key_Up);
  ChooseRow(Find<QComboBox>(*window, "cboCodingMethod"), 5);
  QTest::keyClick(&Find<QLineEdit>(*window, "txtABR"), Qt::Key_Down);
  QTest::keyClick(&Find<QSlider>(*window, "sldMaxVBRBitrate"), Qt::Key_End);
  Press(*window, "chkWriteVBRHeader");
  Press(*window, "chkEnforceVBRMinBitrate");
  tab.setCurrentIndex(2);
  Press(*window, "chkHFilt");
  Press(*window, "chkLFilt");
  QTest::keyClick(&Find<QLineEdit>(*window, "txtHFiltF"), Qt::Key_Up);
  auto& width = Find<QLineEdit>(*window, "txtHFiltW");
  width.selectAll();
  QTest::keyClicks(&width, "77");
  Find<QWidget>(*window, "udLFiltF").findChildren<QToolButton*>().constLast()->click();
  Find<QWidget>(*window, "udLFiltW").findChildren<QToolButton*>().constFirst()->click();
  tab.setCurrentIndex(3);
  ChooseRow(Find<QComboBox>(*window, "cboATHControl"), 1);
  ChooseRow(Find<QComboBox>(*window, "cboDeEmphasis"), 2);
  for (const char* box :
       {"chkCRCChecksums", "chkISOComply", "chkDiffBlockTypes", "chkShortBlocks", "chkBitReservoir"}) {
    Press(*window, box);
  }
  Press(*window, "cmdOK");
  EXPECT_FALSE(window->isVisible());
  const config::FormatMP3 wanted{.Frequency = 32000,
                                 .Bitrate = 8,
                                 .Channels = 1,
                                 .Quality = 9,
                                 .HighPassFilter = true,
                                 .HighPassFilterFreq = 40,
                                 .HighPassFilterWidth = 77,
                                 .LowPassFilter = true,
                                 .LowPassFilterFreq = 15990,
                                 .LowPassFilterWidth = 510,
                                 .VBRCodingMethod = 4,
                                 .VBRMaxBitrate = 320,
                                 .VBRQuality = 5,
                                 .VBRHeader = false,
                                 .VBREnforceMinBitRate = true,
                                 .VBRTargetBitrate = 127,
                                 .IncludeCRC = true,
                                 .ComplyISO = true,
                                 .DifferentBlockTypes = true,
                                 .ShortBlocks = true,
                                 .BitReservoir = true,
                                 .ATHControl = 1,
                                 .DeEmphasis = 2,
                                 .TypeStereo = 4};
  EXPECT_EQ(rig_.Settings.FormatMP3, wanted);
}

TEST_F(FrmFormatTest, Mp3HidesAndDisablesWhatTheCodingMethodLeavesOut) {
  const auto window = Make("MP3");
  window->show();
  Find<QTabWidget>(*window, "tabMP3").setCurrentIndex(1);
  auto& method = Find<QComboBox>(*window, "cboCodingMethod");
  for (int row = 0; row < 6; ++row) {
    ChooseRow(method, row);
    const bool variable = row != 0;
    const bool average = row == 5;
    for (const char* name : {"frmMaxVBR", "sldMaxVBRBitrate", "lblMaxVBRBitrate", "frmAdvanced",
                             "chkWriteVBRHeader", "chkEnforceVBRMinBitrate"}) {
      EXPECT_EQ(Find<QWidget>(*window, name).isVisible(), variable) << name << row;
    }
    for (const char* name : {"lblVBRQuality", "udVbrQ"}) {
      EXPECT_EQ(Find<QWidget>(*window, name).isVisible(), variable && !average) << name << row;
    }
    for (const char* name : {"lblABR", "udABR"}) {
      EXPECT_EQ(Find<QWidget>(*window, name).isVisible(), average) << name << row;
    }
    EXPECT_TRUE(Find<QWidget>(*window, "txtVbrQ").isVisible());
    EXPECT_TRUE(Find<QWidget>(*window, "txtABR").isVisible());
    EXPECT_EQ(Find<QWidget>(*window, "txtVbrQ").isEnabled(), variable && !average);
    EXPECT_EQ(Find<QWidget>(*window, "txtABR").isEnabled(), average);
  }
}

TEST_F(FrmFormatTest, Mp3HidesAndDisablesTheControlsOfAFilterThatIsOff) {
  const auto window = Make("MP3");
  window->show();
  Find<QTabWidget>(*window, "tabMP3").setCurrentIndex(2);
  struct Filter {
    const char* Box;
    std::vector<const char*> Hidden;
    std::vector<const char*> Disabled;
  };
  for (const Filter& filter :
       {Filter{"chkHFilt", {"udHFiltF", "udHFiltW", "lblHighWidth"}, {"txtHFiltF", "txtHFiltW"}},
        Filter{"chkLFilt", {"udLFiltF", "udLFiltW", "lblLowWidth"}, {"txtLFiltF", "txtLFiltW"}}}) {
    for (const bool on : {true, false}) {
      Press(*window, filter.Box);
      for (const char* name : filter.Hidden) EXPECT_EQ(Find<QWidget>(*window, name).isVisible(), on) << name;
      for (const char* name : filter.Disabled) {
        EXPECT_EQ(Find<QWidget>(*window, name).isEnabled(), on) << name;
        EXPECT_TRUE(Find<QWidget>(*window, name).isVisible()) << name;
      }
    }
  }
}

TEST_F(FrmFormatTest, AFilterTextThatIsNotANumberKeepsItsWindowOpenWithTheFocusThere) {
  const auto window = Make("MP3");
  window->show();
  window->activateWindow();
  Find<QTabWidget>(*window, "tabMP3").setCurrentIndex(2);
  Press(*window, "chkLFilt");
  auto& field = Find<QLineEdit>(*window, "txtLFiltW");
  field.selectAll();
  QTest::keyClicks(&field, "40000");
  Press(*window, "chkLFilt");
  EXPECT_FALSE(field.isEnabled());
  Find<QTabWidget>(*window, "tabMP3").setCurrentIndex(0);
  Press(*window, "cmdOK");
  EXPECT_TRUE(window->isVisible());
  EXPECT_EQ(window->focusWidget(), &field);
  EXPECT_TRUE(field.isVisible());
  EXPECT_TRUE(field.isEnabled());
  EXPECT_EQ(field.text(), "40000");
  EXPECT_EQ(rig_.Settings.FormatMP3, config::FormatMP3());
  field.selectAll();
  QTest::keyClicks(&field, "400");
  Press(*window, "cmdOK");
  EXPECT_FALSE(window->isVisible());
  EXPECT_EQ(rig_.Settings.FormatMP3.LowPassFilterWidth, 400);
}

TEST_F(FrmFormatTest, ASpinTextShowsTheNumberThatCountsOnceTheUserLeavesIt) {
  rig_.Settings.FormatMP3.VBRCodingMethod = 0;
  const auto window = Make("MP3");
  window->show();
  Find<QTabWidget>(*window, "tabMP3").setCurrentIndex(1);
  auto& field = Find<QLineEdit>(*window, "txtVbrQ");
  field.setFocus();
  field.selectAll();
  QTest::keyClicks(&field, "99");
  EXPECT_EQ(field.text(), "99");
  emit field.editingFinished();
  EXPECT_EQ(field.text(), "9");
}

TEST_F(FrmFormatTest, FilenameFormatsReadAsTheirRulesSay) {
  rig_.Window.txtFilenameFormat("%a\\%a - %s");
  windows::frmFilenameFormatSelect window(rig_.Window.FilenameFormats(), rig_.Section);
  EXPECT_EQ(window.windowTitle(), "Filename Formats");
  for (std::size_t row = 0; row < 8; ++row) {
    const std::string at = "_" + std::to_string(row);
    const auto& button = Find<QAbstractButton>(window, ("cmdSelect" + at).c_str());
    EXPECT_EQ(button.text(), row == 2 ? "== Selected ==" : "Select");
    EXPECT_EQ(button.toolTip(), "Click to select this file format");
    const auto& label = Find<QLabel>(window, ("lblDescription" + at).c_str());
    EXPECT_EQ(label.text().toStdString(), presenters::FilenameFormats()[row].Description);
    EXPECT_EQ(label.property("tag").toString().toStdString(), presenters::FilenameFormats()[row].Format);
    EXPECT_EQ(label.textFormat(), Qt::PlainText);
  }
  const auto& cancel = Find<QAbstractButton>(window, "cmdCancel");
  EXPECT_EQ(cancel.text(), "Cancel");
  EXPECT_EQ(cancel.toolTip(), "Exit without making any changes");
}

TEST_F(FrmFormatTest, NoDescriptionOfAFilenameFormatIsCutOffInTheSmallestWindow) {
  windows::frmFilenameFormatSelect window(rig_.Window.FilenameFormats(), rig_.Section);
  window.show();
  window.resize(1, 1);
  QCoreApplication::processEvents();
  for (int row = 0; row < 8; ++row) {
    const auto& label = Find<QLabel>(window, ("lblDescription_" + std::to_string(row)).c_str());
    EXPECT_GE(label.height(), label.heightForWidth(label.width())) << row;
  }
}

TEST_F(FrmFormatTest, AFilenameFormatIsWrittenByItsButtonAndNotByCancel) {
  for (std::size_t row = 0; row < 8; ++row) {
    windows::frmFilenameFormatSelect window(rig_.Window.FilenameFormats(), rig_.Section);
    window.show();
    Press(window, ("cmdSelect_" + std::to_string(row)).c_str());
    EXPECT_FALSE(window.isVisible());
    EXPECT_EQ(rig_.Window.Controls().txtFilenameFormat, presenters::FilenameFormats()[row].Format);
  }
  windows::frmFilenameFormatSelect window(rig_.Window.FilenameFormats(), rig_.Section);
  window.show();
  Press(window, "cmdCancel");
  EXPECT_EQ(rig_.Window.Controls().txtFilenameFormat, presenters::FilenameFormats()[7].Format);
}

TEST_F(FrmFormatTest, TheWindowOfFilenameFormatsSharesThePlaceOfTheConfiguration) {
  rig_.Store.Put("Lorimel", "Kestrune", "ConfigTop", "600");
  rig_.Store.Put("Lorimel", "Kestrune", "ConfigLeft", "900");
  windows::frmFilenameFormatSelect window(rig_.Window.FilenameFormats(), rig_.Section);
  EXPECT_EQ(window.pos(), QPoint(60, 40));
  window.show();
  window.move(100, 20);
  window.close();
  EXPECT_EQ(rig_.Store.Stored("Lorimel", "Kestrune", "ConfigTop"), "300");
  EXPECT_EQ(rig_.Store.Stored("Lorimel", "Kestrune", "ConfigLeft"), "1500");
}

TEST_F(FrmFormatTest, AMinimisedWindowOfFilenameFormatsSavesNoPlace) {
  windows::frmFilenameFormatSelect window(rig_.Window.FilenameFormats(), rig_.Section);
  window.showMinimized();
  window.reject();
  EXPECT_EQ(rig_.Store.Stored("Lorimel", "Kestrune", "ConfigTop"), "(absent)");
}

TEST_F(FrmFormatTest, OpenedAndClosedManyTimesNothingGrows) {
  const auto round = [this] {
    for (const char* code : {"RAW", "VOX", "WAV", "G726", "OGG", "FLAC", "OPUS", "MP3"}) {
      const std::unique_ptr<QDialog> window = Make(code);
      window->show();
      Press(*window, "cmdOK");
    }
    rig_.Store.Calls.clear();
    QCoreApplication::processEvents();
  };
  for (int i = 0; i < 20; ++i) round();
  const auto tops = QApplication::topLevelWidgets().size();
  const std::size_t held = mallinfo2().uordblks;
  const int rounds = Repetitions(100, 1000);
  for (int i = 0; i < rounds; ++i) round();
  EXPECT_EQ(QApplication::topLevelWidgets().size(), tops);
  EXPECT_LT(mallinfo2().uordblks, held + 200000);
}

}  // namespace
}  // namespace kestrune::test
