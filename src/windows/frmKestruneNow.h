#pragma once

#include <QWidget>
#include <array>
#include <functional>

#include "config/settings/SettingsSection.h"
#include "presenters/NowScreen.h"
#include "presenters/Presets.h"

class QLabel;

namespace kestrune::windows {

class ElidedLabel;
class LockMark;
class NowButtonFace;

/// What plays now, in letters large enough to read from afar: a window that is larger than designed is that picture
/// magnified, its buttons as wide as the window. It is created anew each time it is shown and
/// deletes itself when it closes, so its owner holds it in a QPointer.
class frmKestruneNow final : public QWidget {
 public:
  /// Loads the rules and places itself. All references must outlive the window.
  frmKestruneNow(presenters::NowScreen& rules, presenters::Presets& presets,
                 const config::SettingsSection& section, QWidget* parent = nullptr);

  /// A key of the main window was pressed, in HotKeyOf's numbering: pass it the focus and the key.
  std::function<void(int)> HotKey;
  /// It closes: `chkKestruneNow` is to be cleared.
  std::function<void()> Closed;

  void Refresh();

 protected:
  void resizeEvent(QResizeEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void LayOut();
  // `firstRow` is the top of the first buttons, in pixels of the designed size, of which each is drawn as `magnified` pixels.
  void LayOutButtons(int firstRow, double magnified);
  void LayOutStrip(double magnified);
  void LayOutLines(int firstRow, double magnified);

  presenters::NowScreen& rules_;
  const config::SettingsSection& section_;
  QLabel* lblChannel_;
  QLabel* lblArtist_;
  QLabel* lblSong_;
  ElidedLabel* lblStatus_;
  LockMark* boxLock_;
  std::array<float, 3> points_{};  // of the letters of the three lines at the designed size
  std::array<NowButtonFace*, presenters::Presets::kCount> cmdPresetStation_{};
};

}  // namespace kestrune::windows
