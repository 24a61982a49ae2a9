#include "windows/Desktop.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDialog>
#include <QEventLoop>
#include <QMenu>
#include <QTimer>
#include <QWindow>
#include <algorithm>
#include <chrono>
#include <utility>

#include "base/Ignored.h"
#include "base/Text.h"
#include "presenters/WindowTable.h"
#include "windows/Announcer.h"
#include "windows/Attention.h"
#include "windows/Binding.h"
#include "windows/FocusRing.h"
#include "windows/Placement.h"
#include "windows/ProgramIcon.h"
#include "windows/SpokenWindow.h"

namespace kestrune::windows {
namespace {

using recorder::WindowName;

constexpr std::chrono::milliseconds kRefreshInterval{100};
/// While nobody is at the program: what windows cost then is mostly their refresh and the level display, which follows it.
constexpr std::chrono::milliseconds kUnattendedInterval{250};
/// Asking for a tray is a call to another program, so it is not done at each refresh.
constexpr int kRefreshesPerTrayCheck = 20;
constexpr qsizetype kTrayTipLetters = 64;

bool IsPermanent(WindowName name) {
  return presenters::RowOf(name).Permanent;
}

void Raise(QWidget& window) {
  window.show();
  window.raise();
  window.activateWindow();
}

presenters::WindowState StateOf(const QWidget& window) {
  if (window.isMinimized()) return presenters::WindowState::Minimized;
  return InNormalState(window) ? presenters::WindowState::Normal : presenters::WindowState::Maximized;
}

}  // namespace

Desktop::Desktop(Outside outside) : outside_(std::move(outside)), icon_(ProgramIcon()) {
  SpeakWindows();
  new FocusRing(this);
  attention_ = new Attention(outside_.Loop, this);
}

Desktop::~Desktop() {
  Detach();
}

void Desktop::Attach(presenters::UnitPresenters& rules) {
  rules_ = &rules;
  unit_ = &rules.Unit();
  main_ = std::make_unique<frmKestrune>(rules);
  announcer_ = new Announcer(*main_);
  main_->Show = [this](WindowName name) { Show(name); };
  main_->mnuAbout = [this] { ShowAbout(); };
  main_->mnuHelpWith = [this] { base::Ignored(outside_.Shell.Open(outside_.HelpFile)); };
  main_->mnuIntent = [this] {
    base::Ignored(outside_.Dialogs.Show(
        {.Title = "Kestrune Statement of Intent",
         .Text = "Kestrune is intended for use as a timeshifting utility for personal use only.\n"
                 "Distributing or otherwise making available MP3 files created by Kestrune is a crime."}));
  };
  main_->mnuCheckUpdate = [this] { unit_->mnuCheckUpdate(); };
  main_->mnuRadioID = [this] { ShowRadioID(); };
  main_->OfferForList = [this](std::string_view word, const std::string& caption) {
    if (!base::Trim(caption).empty()) OfferForList(word, caption);
  };
  main_->CloseAsked = [this] { unit_->Wishes().Close(); };
  main_->OpenPath = [this](const std::string& path) { base::Ignored(outside_.Shell.Open(path)); };
  main_->StateChanged = [this] {
    ReadMainWindow();
    rules_->Resize().Apply();
    ShowMainWindow();
  };
  rules.PresetButtons().ShowPresets = [this] { Show(WindowName::Presets); };
  ReadMainWindow();
  tmrRefresh_ = outside_.Loop.MakeTimer(kRefreshInterval, [this] { RefreshInTime(); });
  tmrRefresh_->SetEnabled(true);
}

void Desktop::Detach() {
  tmrRefresh_.reset();
  SetBusyCursor(false);
  RemoveTrayIcon();
  kept_.clear();
  opened_.clear();
  modal_.reset();
  updating_.reset();
  splash_.reset();
  pleaseWait_.reset();
  main_.reset();
}

void Desktop::SetMaker(WindowName name, Maker maker) {
  makers_[name] = std::move(maker);
}

void Desktop::RefreshInTime() {
  const auto next = attention_->Paid() ? kRefreshInterval : kUnattendedInterval;
  if (tmrRefresh_->Interval() != next) tmrRefresh_->SetInterval(next);
  Refresh();
}

void Desktop::Refresh() {
  if (main_ == nullptr) return;
  ReadMainWindow();
  ShowMainWindow();
  LookForTray();
  const presenters::MainWindow window = rules_->Window();
  ShowTray(window);
  ShowMark(window.Recording);
  ShowSearch();
  DropClosed();
  main_->Refresh(window);
  SayChanges();
  for (const WindowName name : std::vector(opened_)) {
    const Kept* kept = Find(name);
    if (kept != nullptr && kept->Window->Widget()->isVisible()) kept->Window->Refresh();
  }
}

void Desktop::SayChanges() {
  const std::string text = rules_->NextToSay();
  if (!text.empty() && QApplication::activeWindow() != nullptr) announcer_->Say(ToQt(text));
}

// The main window.

void Desktop::ReadMainWindow() {
  presenters::DesktopRecord& record = rules_->OnDesktop();
  record.State = StateOf(*main_);
  if (record.State != presenters::WindowState::Normal || !main_->isVisible()) return;
  const Place place = PlaceOf(*main_);
  record.Top = place.Top;
  record.Left = place.Left;
}

void Desktop::ShowMainWindow() {
  const bool visible = rules_->OnDesktop().Visible && !unit_->State().Run.ShuttingDown;
  if (visible != main_->isHidden()) return;
  if (!visible) KeepPlace(*main_);
  main_->setVisible(visible);
}

void Desktop::PlaceMainWindow() {
  const Place own = PlaceOf(*main_);
  const config::SettingsSection& section = unit_->Parts().Section;
  const Place stored{.Top = section.Single("MainTop", own.Top), .Left = section.Single("MainLeft", own.Left)};
  // A window that is not moved is placed by the desktop.
  if (stored.Top != own.Top || stored.Left != own.Left) MoveTo(*main_, stored);
}

void Desktop::HideAndDisableMainWindow() {
  rules_->OnDesktop().Visible = false;
  main_->hide();
  main_->setEnabled(false);
  SetBusyCursor(true);
}

void Desktop::ShowMainWindowDisabled() {
  rules_->OnDesktop().Visible = true;
  main_->setEnabled(false);
  main_->Refresh();
  // The focus is taken once, and then only from the program's own windows: the user may be at work elsewhere.
  if (!std::exchange(mainShown_, true)) {
    Raise(*main_);
  } else if (QApplication::activeWindow() != nullptr) {
    main_->activateWindow();
  }
}

void Desktop::EnableMainWindow() {
  main_->setEnabled(true);
  SetBusyCursor(false);
}

void Desktop::MainWindowToFront() {
  if (main_ != nullptr && main_->isVisible()) Raise(*main_);
}

void Desktop::PassKey(int key) {
  MainWindowToFront();
  if (main_ != nullptr) main_->PressHotKey(key);
}

void Desktop::SetBusyCursor(bool busy) {
  if (std::exchange(busyCursor_, busy) == busy) return;
  if (busy) {
    QApplication::setOverrideCursor(Qt::BusyCursor);
  } else {
    QApplication::restoreOverrideCursor();
  }
}

// The tray.

void Desktop::AddTrayIcon() {
  tray_ = std::make_unique<QSystemTrayIcon>(icon_);
  trayMenu_ = std::make_unique<QMenu>();
  trayMenu_->addAction(tr("Show Kestrune"), this, [this] { Restore(); });
  trayMenu_->addSeparator();
  for (const char* name : {"mnuRecord", "mnuStop"}) trayMenu_->addAction(main_->Entry(name));
  trayHint_ = trayMenu_->addAction(QString(), this, [this] { rules_->TuneToHint(); });
  trayHint_->setObjectName(QStringLiteral("mnuTuneToHint"));
  trayMenu_->addSeparator();
  trayMenu_->addAction(main_->Entry("mnuExit"));
  tray_->setContextMenu(trayMenu_.get());
  connect(tray_.get(), &QSystemTrayIcon::activated, this, [this](QSystemTrayIcon::ActivationReason reason) {
    if (reason == QSystemTrayIcon::Trigger) Restore();
  });
  tray_->show();
  trayCheck_ = 0;
  trayTip_.clear();
  LookForTray();
  ShowTray(rules_->Window());
}

void Desktop::RemoveTrayIcon() {
  // This call may come from the menu itself.
  if (tray_ != nullptr) tray_.release()->deleteLater();
  if (trayMenu_ != nullptr) trayMenu_.release()->deleteLater();
}

void Desktop::LookForTray() {
  presenters::DesktopRecord& record = rules_->OnDesktop();
  if (tray_ == nullptr) {
    record.TrayIcon = false;
    return;
  }
  if (trayCheck_ == 0) record.TrayIcon = QSystemTrayIcon::isSystemTrayAvailable();
  trayCheck_ = (trayCheck_ + 1) % kRefreshesPerTrayCheck;
}

void Desktop::ShowTray(const presenters::MainWindow& window) {
  if (tray_ == nullptr) return;
  trayHint_->setVisible(window.HintChannel != 0);
  trayHint_->setText(ToQt(base::DoubleAmpersands("Tune to " + window.HintStation)));
  if (window.TrayTip == trayTip_) return;
  trayTip_ = window.TrayTip;
  tray_->setToolTip(ToQt(trayTip_).left(kTrayTipLetters));
}

void Desktop::ShowMark(bool recording) {
  if (std::exchange(marked_, recording) == recording) return;
  icon_ = recording ? RecordingIcon() : ProgramIcon();
  if (tray_ != nullptr) tray_->setIcon(icon_);
  main_->setWindowIcon(icon_);
  for (auto& [name, kept] : kept_) {
    if (QWidget* const widget = kept.Window->Widget(); widget != nullptr) widget->setWindowIcon(icon_);
  }
}

QIcon Desktop::TrayIcon() const {
  return tray_ != nullptr ? tray_->icon() : QIcon();
}

QString Desktop::TrayTip() const {
  return tray_ != nullptr ? tray_->toolTip() : QString();
}

void Desktop::Restore() {
  if (unit_->State().Run.FormLoading || unit_->State().Run.ShuttingDown) return;
  rules_->OnDesktop().Visible = true;
  main_->setWindowState(main_->windowState() & ~(Qt::WindowMinimized | Qt::WindowMaximized));
  Raise(*main_);
}

// The windows of the start.

void Desktop::ShowPleaseWaitAndSplash() {
  SetBusyCursor(true);
  pleaseWait_ = std::make_unique<frmPleaseWait>();
  pleaseWait_->CancelAsked = [this] { unit_->Wishes().Close(); };
  ShowSearch();
  pleaseWait_->show();
  outside_.Loop.PumpEvents();
  if (pleaseWait_ == nullptr) return;
  ShowAbout();
  Raise(*pleaseWait_);
  outside_.Loop.PumpEvents();
}

void Desktop::ShowSearch() {
  if (pleaseWait_ != nullptr) pleaseWait_->Refresh(rules_->PleaseWaitWindow());
}

void Desktop::ClosePleaseWait() {
  pleaseWait_.reset();
}

void Desktop::ShowAbout() {
  splash_ = std::make_unique<frmSplash>(outside_.Loop, outside_.Shell, outside_.Dialogs, outside_.Links);
  StandOver(*splash_);
  splash_->show();
}

void Desktop::StandOver(QWidget& window) {
  if (main_->isHidden()) return;
  window.winId();  // makes the window's handle
  if (window.windowHandle() != nullptr) window.windowHandle()->setTransientParent(main_->windowHandle());
}

void Desktop::LoadChannelsWindow() {
  for (const presenters::WindowRow& row : presenters::WindowTable()) {
    if (row.Permanent && makers_.contains(row.Name)) base::Ignored(Load(row.Name));
  }
}

void Desktop::ShowFirstConfiguration() {
  if (!makers_.contains(WindowName::Config)) return;
  Kept* kept = Load(WindowName::Config);
  if (kept == nullptr) return;
  kept->Hidden = false;
  const bool busy = busyCursor_;
  SetBusyCursor(false);
  kept->Window->OpenFirst();
  if (!unit_->State().Run.ShuttingDown) SetBusyCursor(busy);
  DropClosed();
}

void Desktop::OpenModal(std::unique_ptr<QWidget> window) {
  // Preparing what it shows may have waited, and the program may have been closed meanwhile.
  if (unit_->State().Run.ShuttingDown) return;
  modal_ = std::move(window);
  modal_->setWindowModality(Qt::ApplicationModal);
  StandOver(*modal_);
  Raise(*modal_);
}

void Desktop::ShowModally(QWidget& window) {
  if (unit_->State().Run.ShuttingDown) return;
  const QPointer<QWidget> shown = &window;
  window.setWindowModality(Qt::ApplicationModal);
  StandOver(window);
  const bool busy = busyCursor_;
  SetBusyCursor(false);
  Raise(window);
  QEventLoop wait;
  QTimer look;
  connect(&look, &QTimer::timeout, &wait, [&] {
    if (shown == nullptr || shown->isHidden() || unit_->State().Run.ShuttingDown) wait.quit();
  });
  look.start(kRefreshInterval);
  if (window.isVisible()) wait.exec();
  if (shown != nullptr) shown->setWindowModality(Qt::NonModal);
  if (!unit_->State().Run.ShuttingDown) SetBusyCursor(busy);
}

void Desktop::ShowRememberedWindows() {
  remembering_ = true;
  rules_->Switches().ShowRemembered();
  remembering_ = false;
}

void Desktop::ShowWaitCursor(bool wait) {
  SetBusyCursor(wait);
}

void Desktop::ShowUpdating() {
  updating_ = std::make_unique<frmUpdating>(unit_->UpdatingWindow());
  updating_->setWindowIcon(ProgramIcon());
  updating_->show();
}

void Desktop::CloseUpdating() {
  updating_.reset();
}

// The other windows.

Desktop::Kept* Desktop::Find(WindowName name) {
  return const_cast<Kept*>(std::as_const(*this).Find(name));  // NOLINT: *this is not const
}

/// A closed window is destroyed at the next refresh and no longer counts.
const Desktop::Kept* Desktop::Find(WindowName name) const {
  const auto place = kept_.find(name);
  if (place == kept_.end()) return nullptr;
  const QWidget* widget = place->second.Window->Widget();
  if (widget == nullptr) return nullptr;
  const bool open = !widget->isHidden() || place->second.Hidden || place->second.Closing;
  return open || IsPermanent(name) ? &place->second : nullptr;
}

QWidget* Desktop::WidgetOf(WindowName name) const {
  const Kept* kept = Find(name);
  return kept != nullptr ? kept->Window->Widget() : nullptr;
}

bool Desktop::IsLoaded(WindowName name) const {
  return Find(name) != nullptr;
}

Desktop::Kept* Desktop::Load(WindowName name) {
  if (Kept* kept = Find(name)) return kept;
  const auto maker = makers_.find(name);
  if (maker == makers_.end()) return nullptr;
  std::erase(opened_, name);
  kept_.erase(name);
  std::unique_ptr<OpenWindow> made = maker->second();
  Kept& kept = kept_[name];
  kept.Window = std::move(made);
  kept.Hidden = true;
  opened_.push_back(name);
  QWidget& widget = *kept.Window->Widget();
  widget.setWindowIcon(icon_);
  widget.installEventFilter(this);
  return &kept;
}

void Desktop::DropClosed() {
  for (auto each = kept_.begin(); each != kept_.end();) {
    if (Find(each->first) == nullptr) {
      std::erase(opened_, each->first);
      each = kept_.erase(each);
    } else {
      ++each;
    }
  }
}

void Desktop::Show(WindowName name) {
  if (unit_->State().Run.ShuttingDown) return;
  Kept* kept = Load(name);
  if (kept == nullptr) return;
  kept->Window->Refresh();
  if (remembering_) {
    // The user has not asked for it now, and the keys stay with the window that has them.
    kept->Hidden = true;
    return SetVisible(name, true);
  }
  kept->Hidden = false;
  kept->Window->Open();
}

void Desktop::Close(WindowName name) {
  Kept* kept = Find(name);
  if (kept == nullptr) return;
  kept->Hidden = false;
  const QPointer<QWidget> widget = kept->Window->Widget();
  if (IsPermanent(name)) widget->hide();
  if (kept->Closing) return;
  RunClosingRule(*kept);
}

void Desktop::RunClosingRule(Kept& kept) {
  const QPointer<QWidget> widget = kept.Window->Widget();
  if (widget == nullptr) return;
  QCloseEvent event;
  QCoreApplication::sendEvent(widget, &event);
  if (event.isAccepted() && widget != nullptr) widget->hide();
}

void Desktop::SetVisible(WindowName name, bool visible) {
  Kept* kept = Find(name);
  if (kept == nullptr) return;
  QWidget& widget = *kept->Window->Widget();
  if (widget.isHidden() != visible) return;
  kept->Hidden = !visible;
  widget.setAttribute(Qt::WA_ShowWithoutActivating, visible);
  widget.setVisible(visible);
  widget.setAttribute(Qt::WA_ShowWithoutActivating, false);
}

// A closing rule may set its check box, whose own rule closes the window again: only the first close counts.
bool Desktop::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::Hide && !event->spontaneous()) KeepPlace(*static_cast<QWidget*>(watched));
  if (event->type() != QEvent::Close) return QObject::eventFilter(watched, event);
  const auto place = std::find_if(kept_.begin(), kept_.end(), [watched](const auto& each) {
    return each.second.Window->Widget() == watched;
  });
  if (place == kept_.end() || place->second.Closing) return true;
  place->second.Closing = true;
  watched->event(event);
  place->second.Closing = false;
  place->second.Hidden = false;
  return true;
}

// The end.

void Desktop::HideAll() {
  if (main_ == nullptr) return;
  outside_.Dialogs.GiveUp();
  SetBusyCursor(false);
  pleaseWait_.reset();
  splash_.reset();
  updating_.reset();
  modal_.reset();
  for (auto& [name, kept] : kept_) {
    kept.Window->Quit();
    QWidget* widget = kept.Window->Widget();
    if (widget == nullptr || widget->isHidden()) continue;
    kept.Hidden = true;
    widget->hide();
  }
  ReadMainWindow();
  rules_->OnDesktop().Visible = false;
  main_->hide();
}

void Desktop::UnloadChannelsAndLog() {
  for (const presenters::WindowRow& row : presenters::WindowTable()) {
    Kept* kept = row.Permanent ? Find(row.Name) : nullptr;
    if (kept == nullptr) continue;
    kept->Window->Quit();
    RunClosingRule(*kept);
  }
}

// Only the closing rules run here. The windows are destroyed by Detach, when nothing uses them any more.
void Desktop::UnloadAll() {
  for (const WindowName name : std::vector(opened_.rbegin(), opened_.rend())) {
    if (IsPermanent(name)) continue;
    Kept* kept = Find(name);
    if (kept == nullptr) continue;
    RunClosingRule(*kept);
  }
}

}  // namespace kestrune::windows
