#pragma once

#include <QWidget>
#include <functional>

#include "config/settings/SettingsSection.h"
#include "presenters/LogWindow.h"

class QListView;

namespace kestrune::windows {

class LogLines;
class LogLineDelegate;

/// The recording log. It lives as long as the program and is only hidden, so it needs no Refresh: it hears of
/// each line itself. The newest line stays in view and selected, unless the user has scrolled up to read.
class frmLog final : public QWidget {
 public:
  /// Places itself. Both references must outlive the window.
  frmLog(presenters::LogWindow& rules, const config::SettingsSection& section, QWidget* parent = nullptr);

  /// Set by the shutdown: then the window really closes.
  bool QuitFlag = false;
  /// The user has closed, which hid the window: `chkRecordLog` is to be cleared.
  std::function<void()> Hidden;
  /// A key of the main window was pressed, in HotKeyOf's numbering: pass it the focus and the key.
  std::function<void(int)> HotKey;

  /// Runs also when the window is hidden through `chkRecordLog`.
  void SavePlace() const;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void changeEvent(QEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void showEvent(QShowEvent* event) override;

 private:
  void OpenCopy();
  void Follow();
  void Measure(int firstLine);

  presenters::LogWindow& rules_;
  const config::SettingsSection& section_;
  LogLines* lines_;
  LogLineDelegate* delegate_;
  QListView* lstLog_;
  bool following_ = true;  // the end of the list is in view
  bool everShown_ = false;
  bool moving_ = false;  // the window scrolls by itself
};

}  // namespace kestrune::windows
