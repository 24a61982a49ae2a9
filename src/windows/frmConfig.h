#pragma once

#include <QDialog>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "presenters/Configuration.h"
#include "presenters/InputTrial.h"

class QCheckBox;
class QComboBox;
class QGridLayout;
class QLabel;
class QLineEdit;
class QProgressBar;
class QPushButton;
class QTabWidget;
class QVBoxLayout;

namespace kestrune::windows {

class UpDown;

/// The configuration, on three pages that scroll where the screen is small. It is one window that is shown and hidden. The windows that open from it are modal, are
/// created anew each time and close with it.
class frmConfig final : public QDialog {
 public:
  /// Both must outlive the window.
  frmConfig(presenters::Configuration& configuration, presenters::InputTrial& trial,
            QWidget* parent = nullptr);

  ~frmConfig() override { trial_.Unload(); }
  frmConfig(const frmConfig&) = delete;
  frmConfig& operator=(const frmConfig&) = delete;

  /// Called when a save is done, to give the main window the focus.
  std::function<void()> FocusMainWindow = [] {};

  /// Loads and shows it beside the main window; if it is already open, it only comes to the front.
  void ShowModeless();
  /// For the first run: modal and without a cancel button. Returns once it has closed.
  void ShowFirst();
  /// Shows the rules' record, and with it what has been changed elsewhere.
  void Refresh();

  /// Escape does the same as the cancel button, and nothing while that is hidden.
  void reject() override;

 protected:
  /// A close by the user asks about changes, a close by the program does not.
  void closeEvent(QCloseEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  using Choose = void (presenters::Configuration::*)(int row);
  using Type = void (presenters::Configuration::*)(std::string_view text);
  using Check = void (presenters::Configuration::*)(bool checked);
  /// A number with its arrows; the label may be missing.
  struct SpunNumber {
    QLabel* Label = nullptr;
    QLineEdit* Line = nullptr;
    UpDown* Arrows = nullptr;
  };

  /// What is added from then on is on that page.
  void AddPage(const char* title);
  /// A group on the present page, with a sentence that says what it is for.
  QGridLayout& AddGroup(const char* title, const char* purpose);
  QLabel* MakeLabel(const char* caption);
  QLabel* AddLabel(QGridLayout& grid, int row, const char* caption);
  QLabel* AddRoom(QGridLayout& grid, int row, const char* name);
  QComboBox* AddList(const char* name, std::string_view tip, int characters, Choose choose);
  QLineEdit* AddText(const char* name, std::string_view tip, Type type);
  QCheckBox* AddBox(const char* name, const char* caption, std::string_view tip, Check check);
  QPushButton* AddButton(const char* name, const char* caption, std::string_view tip,
                         void (frmConfig::*press)());
  SpunNumber AddNumber(const char* line, const char* arrows, std::string_view tip, int characters, Type type,
                       Choose step);
  SpunNumber AddGainNumber(const char* line, const char* arrows, const char* caption, std::string_view tip,
                           Type type, Choose step);
  void FillInput();
  void FillTrial(QGridLayout& grid);
  void ShowTrial();
  void FillFiles();
  void FillSongs();
  void FillFormat();
  void FillShelf();
  void FillWindow();
  void FillWatch();
  void FillNotices();
  void AddButtons();
  void AlignLabels();

  void cmdTest() { trial_.cmdTest(); }
  void cmdBrowse();
  void cmdBrowseShelf();
  void cmdFilenameFormat();
  void cmdChangeFormatSpecs();
  void cmdDefault();
  void cmdSave();
  void cmdCancel();

  void Place();
  void ChooseFolder(const QString& title, const std::string& start,
                    const std::function<void(std::string_view folder)>& chosen);
  void OpenModal(QDialog& window, const std::function<void()>& closed);
  void FocusFieldToMend();
  void SavePlace();
  void CloseWindow();
  void CloseOpened();

  presenters::Configuration& configuration_;
  presenters::InputTrial& trial_;
  QLabel* lblWelcome_ = nullptr;
  QTabWidget* pages_ = nullptr;
  std::vector<QVBoxLayout*> pageLayouts_;
  std::vector<QLabel*> labels_;
  bool asking_ = false;

  QComboBox* cboMinLength_ = nullptr;
  QComboBox* cboMaxLength_ = nullptr;
  QComboBox* cboSongDelay_ = nullptr;
  QComboBox* cboCutPlacement_ = nullptr;
  QLineEdit* txtFileDir_ = nullptr;
  QLabel* lblFileRoom_ = nullptr;
  QLineEdit* txtFilenameFormat_ = nullptr;
  QCheckBox* chkDuplicates_ = nullptr;
  QComboBox* cboFileFormat_ = nullptr;
  QLabel* lblFormatSpecifications_ = nullptr;
  QComboBox* cboDevice_ = nullptr;
  QProgressBar* pbrInputLevel_ = nullptr;
  QLabel* lblInputLevel_ = nullptr;
  QPushButton* cmdTest_ = nullptr;
  QProgressBar* pbrTest_ = nullptr;
  QLabel* lblTest_ = nullptr;
  QCheckBox* chkAGCEnabled_ = nullptr;
  SpunNumber lowLevel_;
  SpunNumber highLevel_;
  SpunNumber attackTime_;
  QLineEdit* txtShelfFolder_ = nullptr;
  QLabel* lblShelfRoom_ = nullptr;
  SpunNumber shelfSongs_;
  SpunNumber shelfMegabytes_;
  QCheckBox* chkAutostart_ = nullptr;
  QCheckBox* chkTaskBarMinimized_ = nullptr;
  QCheckBox* chkWatch_ = nullptr;
  QCheckBox* chkHints_ = nullptr;
  QCheckBox* chkFollowHints_ = nullptr;
  QCheckBox* chkNotifySongs_ = nullptr;
  QCheckBox* chkNotifyEvents_ = nullptr;
  QCheckBox* chkNotifyProblems_ = nullptr;
  QCheckBox* chkNotifyHints_ = nullptr;
  QPushButton* cmdCancel_ = nullptr;
};

}  // namespace kestrune::windows
