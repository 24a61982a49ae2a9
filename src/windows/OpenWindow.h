#pragma once

#include <QPointer>
#include <QWidget>
#include <memory>
#include <utility>

namespace kestrune::windows {

/// A window that the desktop keeps. The window needs a Refresh() and, if it refuses to close before the
/// program ends, a field QuitFlag.
class OpenWindow {
 public:
  virtual ~OpenWindow() = default;
  OpenWindow() = default;
  OpenWindow(const OpenWindow&) = delete;
  OpenWindow& operator=(const OpenWindow&) = delete;

  /// Null if the window has destroyed itself.
  [[nodiscard]] virtual QWidget* Widget() const = 0;
  virtual void Refresh() = 0;
  /// Shows it in front of all others.
  virtual void Open() = 0;
  /// At the first run of the program: shows it in its special way, if it has one, and returns once it has
  /// closed.
  virtual void OpenFirst() = 0;
  /// The program ends: the next close is final.
  virtual void Quit() = 0;
};

template <typename Window>
class OpenWindowOf final : public OpenWindow {
 public:
  explicit OpenWindowOf(std::unique_ptr<Window> window) : window_(window.release()) {}
  ~OpenWindowOf() override { delete window_.data(); }
  OpenWindowOf(const OpenWindowOf&) = delete;
  OpenWindowOf& operator=(const OpenWindowOf&) = delete;

  [[nodiscard]] QWidget* Widget() const override { return window_.data(); }
  void Refresh() override {
    if constexpr (requires(Window & window) { window.Refresh(); }) {
      if (window_ != nullptr) window_->Refresh();
    }
  }
  void Open() override {
    if constexpr (requires(Window & window) { window.ShowModeless(); }) {
      window_->ShowModeless();
    } else {
      window_->show();
      window_->raise();
      window_->activateWindow();
    }
  }
  void OpenFirst() override {
    if constexpr (requires(Window & window) { window.ShowFirst(); }) window_->ShowFirst();
  }
  void Quit() override {
    if constexpr (requires(Window & window) { window.QuitFlag = true; }) {
      if (window_ != nullptr) window_->QuitFlag = true;
    }
  }

 private:
  QPointer<Window> window_;
};

/// For Desktop::SetMaker: `return Opened(std::make_unique<frmLog>(...));`
template <typename Window>
[[nodiscard]] std::unique_ptr<OpenWindow> Opened(std::unique_ptr<Window> window) {
  return std::make_unique<OpenWindowOf<Window>>(std::move(window));
}

}  // namespace kestrune::windows
