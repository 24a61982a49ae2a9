#include "platform/qtdbus/DesktopInhibitor.h"

#include <utility>

namespace kestrune::platform {

DesktopInhibitor::DesktopInhibitor(QDBusConnection system, std::function<QDBusConnection()> session)
    : session_(std::move(session)), login_(std::move(system), [this] { AskPortal(); }) {}

void DesktopInhibitor::Hold(std::string_view why) {
  why_ = why;
  login_.Hold(why);
}

void DesktopInhibitor::Release() {
  login_.Release();
  if (portal_) portal_->Release();
}

void DesktopInhibitor::AskPortal() {
  if (!portal_) portal_.emplace(session_());
  portal_->Hold(why_);
}

}  // namespace kestrune::platform
