#pragma once

#include <QMenu>
#include <QPoint>
#include <functional>

#include "presenters/ChannelMenu.h"

namespace kestrune::windows {

/// The menu of a row of the channels window. It is filled each time that it opens.
class RowMenu final : public QMenu {
 public:
  /// The rules must outlive the menu.
  explicit RowMenu(presenters::ChannelMenu& rules, QWidget* parent = nullptr);

  /// Opens it for a row of the grid, counted from 1; does nothing for one that does not exist. Does not wait.
  void Open(int gridRow, QPoint where);

  /// Brings the row of the tuned channel into view.
  std::function<void()> ShowTuned = [] {};
  /// Something was chosen that may show in the list.
  std::function<void()> Chosen = [] {};

 private:
  void AddPresets(const presenters::ChannelMenuItems& items);
  void AddLists(const presenters::ChannelMenuItems& items, bool kill);
  QAction* Add(QMenu& menu, const char* name, const QString& text, std::function<void()> chosen);

  presenters::ChannelMenu& rules_;
};

}  // namespace kestrune::windows
