#pragma once

#include <QPointer>
#include <QWidget>
#include <memory>
#include <utility>

namespace kestrune::windows {

/// A window that the desktop keeps: it needs a Refresh() and, if it refuses to go before the program ends, a
/// field QuitFlag.
class OpenWindow {
 public:
  virtual ~OpenWindow() = default;
  OpenWindow() = default;
  OpenWindow(const OpenWindow&) = delete;
  OpenWindow& operator=(const OpenWindow&) = delete;

  /// Null if the window has destroyed itself.
  [[nodiscard]] virtual QWidget* Widget() const = 0;
  virtual void Refresh() = 0;
  /// The program ends: the next close is for good.
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
    if constexpr (requires(Window & window) { window.Refresh(); }) window_->Refresh();
  }
  void Quit() override {
    if constexpr (requires(Window & window) { window.QuitFlag = true; }) window_->QuitFlag = true;
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
