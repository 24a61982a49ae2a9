#pragma once

#include <QWidget>
#include <array>
#include <functional>

#include "config/settings/SettingsSection.h"
#include "presenters/ChannelChooser.h"

namespace kestrune::windows {

class ChannelGridModel;
class ChannelView;

/// The list of all channels and what they play. It lives as long as the program; a close only hides it, until
/// the program ends.
class frmChannels final : public QWidget {
 public:
  /// Places itself. Both references must outlive the window.
  frmChannels(presenters::ChannelChooser& rules, const config::SettingsSection& section,
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

 private:
  void ShowWidths();
  void ClickTitle(int column);

  presenters::ChannelChooser& rules_;
  const config::SettingsSection& section_;
  ChannelGridModel* model_;
  ChannelView* grdChannels_;
  std::array<int, radio::ChannelGrid::kColumns> widths_{};
};

}  // namespace kestrune::windows
