#pragma once

#include <QIcon>
#include <QSystemTrayIcon>
#include <QWidget>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "base/EventLoop.h"
#include "platform/Dialogs.h"
#include "platform/Shell.h"
#include "presenters/UnitPresenters.h"
#include "recorder/Windows.h"
#include "windows/OpenWindow.h"
#include "windows/frmKestrune.h"
#include "windows/frmPleaseWait.h"
#include "windows/frmSplash.h"
#include "windows/frmUpdating.h"

namespace kestrune::windows {

class Announcer;
class Attention;

/// The windows of the program. It opens and closes them as the run asks, refreshes what is on screen from the
/// records ten times a second, four times while nobody is at the program, and passes requests from one window to
/// another.
class Desktop final : public QObject, public recorder::Windows {
 public:
  struct Outside {
    base::EventLoop& Loop;
    platform::Dialogs& Dialogs;
    platform::Shell& Shell;
    std::string HelpFile;  ///< full path of Kestrune.html
    MakerLinks Links;
  };
  using Maker = std::function<std::unique_ptr<OpenWindow>()>;

  explicit Desktop(Outside outside);
  ~Desktop() override;
  Desktop(const Desktop&) = delete;
  Desktop& operator=(const Desktop&) = delete;

  /// Called once, before the unit loads.
  void Attach(presenters::UnitPresenters& rules);
  /// Destroys all windows. Called before the rules and the unit are destroyed.
  void Detach();

  /// Sets what creates a window. A window without a maker does not exist, and Show does nothing for it.
  void SetMaker(recorder::WindowName name, Maker maker);

  // Commands of other rooms.
  std::function<void()> ShowRadioID = [] {};
  /// "Artist" or "Song", and the text with "&" doubled.
  std::function<void(std::string_view word, const std::string& caption)> OfferForList = [](auto, auto&) {};

  // What other windows ask for.
  void MainWindowToFront();
  /// Gives the main window the focus and the key, in HotKeyOf's numbering.
  void PassKey(int key);
  [[nodiscard]] frmKestrune* Main() const { return main_.get(); }
  /// The window while it is loaded, else null.
  [[nodiscard]] QWidget* WidgetOf(recorder::WindowName name) const;
  /// Shows a window until it is closed or the program closes; nothing else takes input meanwhile. Does not wait.
  void OpenModal(std::unique_ptr<QWidget> window);
  /// The tip of the tray icon as it is shown; empty without one.
  [[nodiscard]] QString TrayTip() const;
  /// The tray icon as it is shown; null without one.
  [[nodiscard]] QIcon TrayIcon() const;
  /// Shows a window and waits until it is closed or the program closes; nothing else takes input meanwhile.
  void ShowModally(QWidget& window);

  /// Refreshes every visible window.
  void Refresh();

  // The run's wishes.
  void AddTrayIcon() override;
  void RemoveTrayIcon() override;
  void PlaceMainWindow() override;
  void HideAndDisableMainWindow() override;
  void ShowPleaseWaitAndSplash() override;
  void ShowSearch() override;
  void ClosePleaseWait() override;
  void ShowMainWindowDisabled() override;
  void LoadChannelsWindow() override;
  void ShowFirstConfiguration() override;
  void EnableMainWindow() override;
  void ShowRememberedWindows() override;
  void ShowWaitCursor(bool wait) override;
  void ShowUpdating() override;
  void CloseUpdating() override;
  void Show(recorder::WindowName name) override;
  void Close(recorder::WindowName name) override;
  void SetVisible(recorder::WindowName name, bool visible) override;
  [[nodiscard]] bool IsLoaded(recorder::WindowName name) const override;
  void HideAll() override;
  void UnloadChannelsAndLog() override;
  void UnloadAll() override;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  struct Kept {
    std::unique_ptr<OpenWindow> Window;
    bool Hidden = false;   ///< by the program: it is still open
    bool Closing = false;  ///< its closing rule runs
  };

  [[nodiscard]] Kept* Find(recorder::WindowName name);
  [[nodiscard]] const Kept* Find(recorder::WindowName name) const;
  Kept* Load(recorder::WindowName name);
  void RunClosingRule(Kept& kept);
  /// Keeps the window above the main one, and the desktop places it there, if that is shown.
  void StandOver(QWidget& window);
  void DropClosed();
  void ReadMainWindow();
  void ShowMainWindow();
  /// Whether there is a place for the icon, for the record.
  void LookForTray();
  void ShowTray(const presenters::MainWindow& window);
  /// Marks the icons of tray and windows while a song is being recorded.
  void ShowMark(bool recording);
  /// Refreshes, and sets how soon again.
  void RefreshInTime();
  /// Has a screen reader say what has changed, while one of the program's windows is in front.
  void SayChanges();
  void Restore();
  void ShowAbout();
  void SetBusyCursor(bool busy);

  Outside outside_;
  presenters::UnitPresenters* rules_ = nullptr;
  recorder::Kestrune* unit_ = nullptr;
  std::map<recorder::WindowName, Maker> makers_;
  std::map<recorder::WindowName, Kept> kept_;
  std::vector<recorder::WindowName> opened_;  // in this order

  std::unique_ptr<frmKestrune> main_;
  Announcer* announcer_ = nullptr;  // of the main window
  std::unique_ptr<frmPleaseWait> pleaseWait_;
  std::unique_ptr<frmSplash> splash_;
  std::unique_ptr<frmUpdating> updating_;
  std::unique_ptr<QWidget> modal_;
  std::unique_ptr<QSystemTrayIcon> tray_;
  std::unique_ptr<QMenu> trayMenu_;
  QAction* trayHint_ = nullptr;  // of the menu
  std::string trayTip_;
  bool marked_ = false;
  QIcon icon_;  // of tray and windows, marked or not
  int trayCheck_ = 0;
  bool busyCursor_ = false;
  bool remembering_ = false;  // the windows of the last run are being shown
  bool mainShown_ = false;
  Attention* attention_ = nullptr;  // a child of this
  std::unique_ptr<base::Timer> tmrRefresh_;
};

}  // namespace kestrune::windows
