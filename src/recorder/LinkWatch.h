#pragma once

#include <chrono>
#include <cstdint>
#include <memory>

#include "base/EventLoop.h"
#include "base/Journal.h"
#include "base/Result.h"
#include "config/settings/SettingsDoor.h"
#include "radio/channels/Channels.h"
#include "radio/line/LinkOwner.h"
#include "radio/line/RadioLink.h"
#include "recorder/State.h"

namespace kestrune::recorder {

/// What an outage of the radio means for the run. The sound runs on into the capture in hand, which becomes
/// incomplete. When the radio is back its text is read, and a new file begins with it, incomplete as well, since it
/// begins within a song; an event goes on, and after more than a minute the channels are gone through once more.
class LinkWatch final : private radio::LinkOwner {
 public:
  /// What the watch works on. All must outlive the object.
  struct Parts {
    radio::RadioLink& Link;
    radio::Channels& Channels;
    config::SettingsDoor& Settings;
    base::EventLoop& Loop;
    base::Journal& Journal;
  };

  LinkWatch(recorder::State& state, const Parts& parts);

  /// The watch begins; call it at the end of the start.
  void Start() { parts_.Link.StartWatch(*this); }
  /// It ends, before the radio is switched off.
  void Stop();

  /// Why the radio cannot be reached now, fit for a refusal.
  [[nodiscard]] base::Result Ready() const { return parts_.Link.Ready(); }

 private:
  /// What is still to be done after a return, one step after the other.
  enum class Step { Nothing, AwaitText, AwaitCut };

  [[nodiscard]] radio::LinkOrders Orders() const override;
  void RadioLost(const radio::LinkStatus& status) override;
  void RadioFound(const radio::LinkStatus& status, std::chrono::milliseconds away) override;
  void LinkChanged(const radio::LinkStatus& status) override;

  void Look();
  void BeginNewFile();
  void EndReturn();
  void MarkCaptureInHand();

  recorder::State& state_;
  Parts parts_;
  std::unique_ptr<base::Timer> tmrReturn_;
  Step step_ = Step::Nothing;
  std::int16_t slot_ = 0;  // that the new file follows
  std::chrono::milliseconds returned_{0};
  bool walkAgain_ = false;
};

}  // namespace kestrune::recorder
