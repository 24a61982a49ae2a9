#pragma once

#include <array>
#include <functional>
#include <memory>
#include <string>

#include "base/EventLoop.h"
#include "presenters/Presets.h"
#include "radio/channels/Channels.h"

namespace kestrune::presenters {

/// What the main window shows of the tuned channel, with "&" doubled, and of what becomes of its song.
struct NowLines {
  std::string lblChannel = {};
  std::string lblArtist = {};
  std::string lblSong = {};
  std::string Status = {};  ///< the recorder's state with the length of a recording; plain
  bool Locked = false;      ///< the buttons tune to nothing until the recording stops

  bool operator==(const NowLines&) const = default;
};

/// A big button of the now window.
struct NowButton {
  /// Number and station, artist, song, one a line, "&" doubled; empty without a preset.
  std::string Caption = {};
  bool Tuned = false;  ///< its channel is the tuned one: the background is green

  bool operator==(const NowButton&) const = default;
};

/// What the now window shows: while it is open, once a second, a copy of the main window's lines and what each
/// preset's channel plays.
class NowScreen {
 public:
  /// All must outlive the object. `mainWindow` gives what the main window shows at this moment.
  NowScreen(const radio::Channels& channels, const Presets& presets, base::EventLoop& loop,
            std::function<NowLines()> mainWindow);

  /// The window opens, with a first copy.
  void Load();
  /// The window closes.
  void Close() { tmrUpdate_->SetEnabled(false); }

  [[nodiscard]] const NowLines& Lines() const { return lines_; }
  [[nodiscard]] const std::array<NowButton, Presets::kCount>& Buttons() const { return buttons_; }
  [[nodiscard]] const base::Timer& tmrUpdate() const { return *tmrUpdate_; }

 private:
  void tmrUpdate_Timer();
  [[nodiscard]] std::string CaptionOf(std::int16_t channel) const;

  const radio::Channels& channels_;
  const Presets& presets_;
  std::function<NowLines()> mainWindow_;
  NowLines lines_;
  std::array<NowButton, Presets::kCount> buttons_;
  std::unique_ptr<base::Timer> tmrUpdate_;
};

}  // namespace kestrune::presenters
