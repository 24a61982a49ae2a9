#include "presenters/NowScreen.h"

#include <chrono>
#include <cstddef>
#include <utility>

#include <fmt/format.h>

#include "base/OneLine.h"
#include "base/Text.h"

namespace kestrune::presenters {

namespace {

constexpr std::chrono::milliseconds kUpdateInterval{1000};

// A line break within a name would begin a line that is not the name's.
std::string Shown(const std::string& text) {
  return base::DoubleAmpersands(base::OneLine(text));
}

}  // namespace

NowScreen::NowScreen(const radio::Channels& channels, const Presets& presets, base::EventLoop& loop,
                     std::function<NowLines()> mainWindow)
    : channels_(channels),
      presets_(presets),
      mainWindow_(std::move(mainWindow)),
      tmrUpdate_(loop.MakeTimer(kUpdateInterval, [this] { tmrUpdate_Timer(); })) {}

void NowScreen::Load() {
  lines_ = {};
  buttons_ = {};
  tmrUpdate_Timer();
  tmrUpdate_->SetEnabled(true);
}

void NowScreen::tmrUpdate_Timer() {
  lines_ = mainWindow_();
  for (int i = 0; i < Presets::kCount; ++i) {
    NowButton& button = buttons_.at(static_cast<std::size_t>(i));
    const std::int16_t channel = presets_.ChannelOf(i);
    // A button without a channel keeps the colour that it had.
    if (channel != 0) button.Tuned = channel == channels_.ChannelNumber();
    button.Caption = channel == 0 ? std::string() : CaptionOf(channel);
  }
}

std::string NowScreen::CaptionOf(std::int16_t channel) const {
  const radio::ChannelEntry& entry = channels_.Table().At(channels_.Table().ChannelIndex(channel));
  return fmt::format("{} - {}\n{}\n{}", channel, Shown(entry.Station), Shown(entry.Artist),
                     Shown(entry.Song));
}

}  // namespace kestrune::presenters
