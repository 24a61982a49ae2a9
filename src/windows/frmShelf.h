#pragma once

#include <QWidget>
#include <cstdint>
#include <functional>
#include <vector>

#include "config/settings/SettingsSection.h"
#include "presenters/Shelf.h"

class QLineEdit;
class QPushButton;
class QTreeWidget;

namespace kestrune::windows {

class ElidedLabel;

/// The shelf: the song that plays on top, then what just played and was not kept. Enter plays a song, and a row can be dragged
/// out as a file. It is made anew each time and deletes itself when it closes, so its owner holds it in a QPointer.
class frmShelf final : public QWidget {
 public:
  /// Loads the rules and places itself. Both references must outlive the window.
  frmShelf(presenters::Shelf& rules, const config::SettingsSection& section, QWidget* parent = nullptr);

  /// A key of the main window was pressed, in HotKeyOf's numbering: pass it the focus and the key.
  std::function<void(int)> HotKey;

  void Refresh();

 protected:
  void closeEvent(QCloseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void ShowRows();
  void ShowButtons();
  /// Goes from the search to what it has found.
  void ChooseFirstFound();
  /// The chosen row of the rules; -1 if there is none.
  [[nodiscard]] int Chosen() const;

  presenters::Shelf& rules_;
  const config::SettingsSection& section_;
  QLineEdit* txtSearch_;
  QTreeWidget* lstSongs_;
  ElidedLabel* lblMessage_;
  QPushButton* cmdPlay_;
  QPushButton* cmdKeep_;
  QPushButton* cmdShowInFolder_;
  std::uint32_t changes_ = 0;                // shown
  std::vector<presenters::ShelfRow> shown_;  // as the list's items show them
};

}  // namespace kestrune::windows
