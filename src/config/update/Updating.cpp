#include "config/update/Updating.h"

#include <chrono>

namespace kestrune::config {

Updating::Updating(base::EventLoop& loop)
    : tmrUpdateBar_(loop.MakeTimer(std::chrono::milliseconds(5),
                                   [this] { window_.pbrDownload = (window_.pbrDownload + 1) % 101; })) {}

void Updating::Open() {
  window_.pbrDownload = 0;
  window_.Visible = true;
  tmrUpdateBar_->SetEnabled(true);
}

void Updating::Close() {
  tmrUpdateBar_->SetEnabled(false);
  window_.Visible = false;
}

}  // namespace kestrune::config
