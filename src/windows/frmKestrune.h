#pragma once

#include <QMainWindow>
#include <QSize>
#include <array>
#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "presenters/Presets.h"
#include "presenters/UnitPresenters.h"
#include "windows/Growth.h"

class QAction;
class QCheckBox;
class QLabel;
class QMenu;
class QProgressBar;
class QPushButton;

namespace kestrune::windows {

class AudioDisplay;
class ElidedLabel;
class KeptList;

/// The main window: what plays, what happens to it, how loud it is; the switches, and the way to every other
/// window. On a large screen what plays is shown in larger letters, and the last kept songs are listed.
class frmKestrune final : public QMainWindow {
 public:
  /// The rules must outlive the window.
  explicit frmKestrune(presenters::UnitPresenters& rules);

  // What the window asks of others.
  std::function<void(recorder::WindowName)> Show;
  std::function<void()> mnuAbout;
  std::function<void()> mnuHelpWith;
  std::function<void()> mnuIntent;
  std::function<void()> mnuCheckUpdate;
  std::function<void()> mnuRadioID;
  /// The user wants to add the artist or the song to a list. Takes "Artist" or "Song", and the label's
  /// caption.
  std::function<void(std::string_view word, const std::string& caption)> OfferForList;
  /// The window was minimised, restored or resized: update the record's state.
  std::function<void()> StateChanged;
  /// A song is to be played, or a folder shown: hand it, by its full path, to the desktop.
  std::function<void(const std::string& path)> OpenPath;
  /// The close box was clicked; the window itself stays open.
  std::function<void()> CloseAsked;

  /// Shows the unit as it is now.
  void Refresh();
  /// Shows the record, and the presets and levels of now.
  void Refresh(const presenters::MainWindow& record);
  /// Acts on a key in HotKeyOf's numbering, pressed here or in another window.
  void PressHotKey(int key);

  /// The menu entry of that name, which there must be.
  [[nodiscard]] QAction* Entry(std::string_view name) const;

 protected:
  bool event(QEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void changeEvent(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  void AskFor(std::function<void()> wish);

  struct Box {
    QCheckBox* Control;
    QAction* Entry;
    bool presenters::MainWindow::*Checked;
  };

  /// What the look of a preset button depends on; it is kept because eliding the text is slow.
  struct PresetFace {
    std::string Caption;
    std::string Tip;
    int Room = -1;  ///< pixels for the text
    qint64 Colours = 0;
    bool operator==(const PresetFace&) const = default;
  };

  void MakeMenus();
  void MakeControls();
  [[nodiscard]] QWidget* MakeSong();
  [[nodiscard]] QWidget* MakeSignal();
  /// The bar that shows how far the load of the channels has come.
  [[nodiscard]] QWidget* MakeLoad(QWidget* parent);
  [[nodiscard]] QWidget* MakeRecording();
  [[nodiscard]] QWidget* MakeLevels();
  [[nodiscard]] QWidget* MakeCounters();
  [[nodiscard]] QWidget* MakePresets();
  [[nodiscard]] QWidget* MakeBoxes();
  QCheckBox* AddBox(const char* name, const char* caption, const char* tip, const char* entry,
                    bool presenters::MainWindow::*checked, std::function<void(bool)> rule);
  QAction* AddEntry(QMenu& menu, const char* name, const char* caption, std::function<void()> chosen,
                    const char* key = "");
  /// Adapts the letters, and what there is room for, to the window's size.
  void Grow();
  void ShowProgress();
  void ShowPresets();
  void ShowPreset(QPushButton& button, std::size_t number, const PresetFace& face) const;
  /// Gives the text the colour that catches the eye, or the normal one.
  void ShowWarning(QWidget& label, bool warning) const;
  void ShowStatus(const presenters::MainWindow& record);
  /// The line of the explanation can be clicked on while it shows a hint.
  void ShowHint(const presenters::MainWindow& record);
  void ShowButtons(const presenters::MainWindow& record);
  void ShowMenus(const presenters::MainWindow& record);

  presenters::UnitPresenters& rules_;
  recorder::Kestrune& unit_;

  ElidedLabel* lblChannel_ = nullptr;
  ElidedLabel* lblGenre_ = nullptr;
  ElidedLabel* lblArtist_ = nullptr;
  ElidedLabel* lblSong_ = nullptr;
  ElidedLabel* lblRecording_ = nullptr;
  ElidedLabel* lblExplanation_ = nullptr;
  QProgressBar* pbrLoad_ = nullptr;
  bool hintShown_ = false;
  QWidget* boxLock_ = nullptr;
  QProgressBar* pbrSong_ = nullptr;  // in place of the label, if the song's length is known
  QLabel* lblSoFar_ = nullptr;
  presenters::SongProgress progress_;
  KeptList* kept_ = nullptr;
  Growth growth_;
  QSize usual_;  // the size that the window asks for without what only a large one shows
  QLabel* lblClock_ = nullptr;
  ElidedLabel* pctTimer_ = nullptr;
  QLabel* lblcRemaining_ = nullptr;
  QLabel* lblRemaining_ = nullptr;
  QLabel* lblRecorded_ = nullptr;
  QLabel* lblTooShort_ = nullptr;
  QLabel* lblTooLong_ = nullptr;
  QLabel* lblRestricted_ = nullptr;
  std::vector<QProgressBar*> signals_;  // satellite 1, satellite 2, ground
  AudioDisplay* audioDisplay_ = nullptr;
  QPushButton* cmdRecord_ = nullptr;
  QPushButton* cmdStop_ = nullptr;
  QPushButton* cmdKeep_ = nullptr;
  std::vector<QPushButton*> presets_;
  std::array<PresetFace, presenters::Presets::kCount> presetFaces_;
  std::map<std::string, QAction*, std::less<>> entries_;
  std::vector<Box> boxes_;
};

}  // namespace kestrune::windows
