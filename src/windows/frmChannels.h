#pragma once

#include <QWidget>
#include <array>
#include <functional>

#include "config/settings/SettingsSection.h"
#include "presenters/ChannelChooser.h"
#include "presenters/ChannelListing.h"
#include "presenters/ChannelMenu.h"

class QCheckBox;
class QHBoxLayout;
class QLabel;
class QLineEdit;

namespace kestrune::windows {

class ChannelGridModel;
class ChannelView;
class LockMark;
class RowMenu;

/// The list of all channels and what they play, under a line that searches it. It lives as long as the program; a close
/// only hides it, until the program ends.
class frmChannels final : public QWidget {
 public:
  /// Places itself. All references must outlive the window.
  frmChannels(presenters::ChannelChooser& rules, presenters::ChannelListing& listing,
              presenters::ChannelMenu& menu, const config::SettingsSection& section,
              QWidget* parent = nullptr);

  /// A key of the main window was pressed, in HotKeyOf's numbering: pass it the focus and the key.
  std::function<void(int)> HotKey;

  /// Shows what has changed since the last call, and nothing else.
  void Refresh();

 protected:
  void showEvent(QShowEvent* event) override;
  void changeEvent(QEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  [[nodiscard]] QHBoxLayout* MakeSearchLine();
  void BindList();
  void ShowWidths();
  void ShowSorting();
  void ClickTitle(int column);
  void Search(const QString& text);
  void ToSearchLine();
  void ToList();
  [[nodiscard]] bool PressInSearchLine(const QKeyEvent& event);
  void ShowTuned();
  void ScrollToSelected();

  presenters::ChannelChooser& rules_;
  presenters::ChannelListing& listing_;
  presenters::ChannelMenu& menu_;
  const config::SettingsSection& section_;
  QLineEdit* txtSearch_;
  QLabel* lblFound_;
  LockMark* boxLock_;
  QCheckBox* chkFavouritesFirst_;
  ChannelGridModel* model_;
  ChannelView* grdChannels_;
  RowMenu* mnuRow_;
  std::array<int, radio::ChannelGrid::kColumns> widths_{};
};

}  // namespace kestrune::windows
