#pragma once

#include <QWidget>
#include <cstdint>
#include <functional>

#include "config/settings/SettingsSection.h"
#include "presenters/MostPlayed.h"
#include "presenters/RecordingReport.h"

class QListWidget;
class QPushButton;
class QTabWidget;
class QTreeWidget;

namespace kestrune::windows {

class MostPlayedPage;

/// The recording report: the nights on the left, the story of the chosen one on the right, problems first; and on a page of
/// its own what was played most. It is made anew each time and deletes itself when it closes, so its owner holds it in a
/// QPointer.
class frmReport final : public QWidget {
 public:
  /// Loads the rules and places itself. All references must outlive the window.
  frmReport(presenters::RecordingReport& rules, presenters::MostPlayed& mostPlayed,
            const config::SettingsSection& section, QWidget* parent = nullptr);

  /// A key of the main window was pressed, in HotKeyOf's numbering: pass it the focus and the key.
  std::function<void(int)> HotKey;
  /// It closes: `chkReport` is to be cleared.
  std::function<void()> Closed;

  void Refresh();
  /// Turns to what a channel has played most.
  void ShowSongsOf(std::int16_t channel);

 protected:
  void closeEvent(QCloseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void ShowNights();
  void ShowStory();
  void ShowInFolder();

  [[nodiscard]] QWidget* MakeNights();

  presenters::RecordingReport& rules_;
  presenters::MostPlayed& mostPlayed_;
  const config::SettingsSection& section_;
  QTabWidget* tabReport_;
  QListWidget* lstNights_;
  QTreeWidget* lstStory_;
  QPushButton* cmdShowInFolder_;
  MostPlayedPage* played_;
  std::uint32_t changes_ = 0;  // shown
};

}  // namespace kestrune::windows
