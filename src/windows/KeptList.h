#pragma once

#include <QWidget>
#include <cstdint>
#include <functional>
#include <string>

#include "presenters/RecentSongs.h"

class QPushButton;
class QTreeWidget;

namespace kestrune::windows {

/// The last songs that were kept, and the way to their files.
class KeptList final : public QWidget {
 public:
  /// The rules must outlive the widget.
  explicit KeptList(const presenters::RecentSongs& rules, QWidget* parent = nullptr);

  /// Hands a file or a folder, by its full path, to the desktop.
  std::function<void(const std::string& path)> Open = [](auto&) {};

  void Refresh();

 private:
  void ShowRows();
  void ShowButton();
  /// Full path; empty if no row is chosen.
  [[nodiscard]] std::string ChosenFile() const;

  const presenters::RecentSongs& rules_;
  QTreeWidget* lstKept_;
  QPushButton* cmdShowKept_;
  std::uint32_t changes_ = 0;
};

}  // namespace kestrune::windows
