#pragma once

#include <QWidget>
#include <array>
#include <cstddef>
#include <functional>

#include "base/RunState.h"
#include "config/settings/SettingsSection.h"
#include "presenters/RestrictListEditor.h"

class QLineEdit;
class QListWidget;
class QVBoxLayout;

namespace kestrune::windows {

/// The editor of the Grab and Kill lists. Made when it is shown, deleted by itself once it has closed.
class frmRestrictList final : public QWidget {
 public:
  /// Loads the lists and places itself. All references must outlive the window.
  frmRestrictList(presenters::RestrictListEditor& rules, const base::RunState& run,
                  const config::SettingsSection& section, QWidget* parent = nullptr);
  ~frmRestrictList() override;
  frmRestrictList(const frmRestrictList&) = delete;
  frmRestrictList& operator=(const frmRestrictList&) = delete;

  /// A close has ended, refused or not: `chkRestrictList` is to be ticked if it was refused, cleared if not.
  /// Does not come while the program shuts down.
  std::function<void(bool refused)> CloseEnded;
  /// Gives the main window the focus.
  std::function<void()> FocusMainWindow;

  void Refresh();

 protected:
  void closeEvent(QCloseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  struct Column {
    QListWidget* lstRestrict = nullptr;
    QLineEdit* txtRestrict = nullptr;
  };

  [[nodiscard]] QVBoxLayout* MakeColumn(std::size_t index, QWidget* heading);
  void Click(std::size_t index, bool focus);
  void cmdAdd(std::size_t index);
  void cmdSave();
  void cmdCancel();

  presenters::RestrictListEditor& rules_;
  const base::RunState& run_;
  const config::SettingsSection& section_;
  std::array<Column, presenters::RestrictListEditor::kColumns> columns_;
  bool closed_ = false;
};

}  // namespace kestrune::windows
