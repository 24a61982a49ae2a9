#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "base/EventLoop.h"
#include "base/Ignored.h"
#include "base/Journal.h"
#include "base/Result.h"
#include "base/RunState.h"
#include "platform/SerialPort.h"
#include "radio/line/BringUp.h"
#include "radio/line/ChannelInfo.h"
#include "radio/line/LinkOwner.h"
#include "radio/line/LinkState.h"
#include "radio/line/PortRoster.h"
#include "radio/line/QuietBringUp.h"
#include "radio/line/RadioSearch.h"
#include "radio/line/RadioSession.h"
#include "radio/line/RemedyPace.h"
#include "radio/line/TimeJump.h"
#include "radio/line/TuningKeeper.h"

namespace kestrune::radio {

/// The life of the line, from the search for the radio to its end. The link owns the session, and it alone opens,
/// powers, tunes, mutes and closes: at its user's word by the verbs below, and by itself once the watch has begun.
///
/// A verb that waits serves events meanwhile, and others may be called within its wait. None fails loudly: while the line
/// is closed, or open on trial, a command returns at once, false or empty, and a question is not asked. Once
/// ShuttingDown is set no reply is read any more, and each wait runs out. All run on the main thread, and so do the
/// handlers.
///
/// The watch brings the radio back for as long as the program runs.
///
/// 1. It notices a line that hung up (Lost, within half a second), ten requests in a row without any reply (Silent)
///    and three refusals "powered off" in a row (Off). A reply lost now and then raises nothing, nor does a frame that
///    never ends: it is dropped when three requests have gone unanswered, as no frame takes so long.
/// 2. Remedies follow one another at the pace of RemedyPace: ask, power on, close and open again; after a hang-up, the
///    device under its own or another number. Only a radio with the identifier of the start is accepted; if that is
///    unknown, any on the same number. The first remedy of an outage is due at once, and so is the next one after a jump
///    of the clocks, with which the pace begins anew, and after which devices may have changed their numbers. A radio
///    that answers again by itself is asked who it is before its turn.
/// 3. When the link comes up, the radio has been put on the channel and the mute that its owner orders. While it is up,
///    TuningKeeper keeps it there; the channel and the mute are sent once more after a gap in the replies and after a
///    jump of the clocks, when the radio may have lost its power.
/// 4. It never waits, and does nothing within another's wait. With `Watch` off it does nothing at all.
class RadioLink {
 public:
  using Milliseconds = std::chrono::milliseconds;

  /// All must outlive the link, which sets the port's receive handler.
  RadioLink(platform::SerialPort& port, base::EventLoop& loop, const base::RunState& run,
            base::Journal& journal);

  // What the radio tells; RadioSession says when the handlers are called. Replies on trial reach none of them.

  void SetChannelInfoHandler(std::function<void(const ChannelInfo& info)> handler);
  void SetSignalHandler(
      std::function<void(std::int16_t satellite1, std::int16_t satellite2, std::int16_t terrestrial)>
          handler);
  /// The latest replies, and whether one is awaited.
  [[nodiscard]] const RadioSession& Session() const { return session_; }

  // The start: the steps of BringUp, which has their times.

  /// Opens the port where the radio is, and powers it on. 0: no port is known.
  [[nodiscard]] RadioSearch FindRadio(
      std::int16_t knownPort, const BringUp::Stepped& stepped = [](const SearchProgress&) {}) {
    return start_.FindRadio(knownPort, stepped);
  }
  /// Asks for the identifier, again and again; may be empty.
  [[nodiscard]] std::string ReadRadioID() { return start_.ReadRadioID(); }
  /// Tunes the radio to a channel, 1 to 255, and unmutes it.
  base::Result Tune(std::int16_t channel) { return start_.Tune(channel); }
  /// Lets the radio settle on its channel.
  void Settle(const std::function<void()>& round) { start_.Settle(round); }

  // The run: one command each.

  /// Tunes the radio to a channel, 1 to 255; waits 1.5 s at most. False if it has not confirmed the channel. True at
  /// once for the channel that was confirmed last.
  [[nodiscard]] bool SelectChannel(std::int16_t channel) { return session_.pcrSelectChannel(channel); }
  /// Waits 1.5 s at most, and not at all after the first mute reply of the run. False if there was none.
  [[nodiscard]] bool Mute(bool on) { return session_.pcrMute(on); }
  /// The identifier, if it is known; otherwise the radio is asked for it, for 1.5 s at most, and powered on if it is
  /// off. May be empty.
  [[nodiscard]] std::string RadioID() { return session_.pcrRadioID(); }

  // Questions, which wait for nothing. The answers come to the handlers.

  void AskForSignal() { base::Ignored(session_.pcrGetSignalLevels()); }
  /// A channel that is not within 1 to 255 is not asked for.
  void AskForChannel(std::int16_t channel) { base::Ignored(session_.pcrGetChannelInfo(channel)); }
  /// For the channel after this one in the radio's list; for the first one after 0.
  void AskForChannelAfter(std::int16_t channel) { base::Ignored(session_.pcrEnumerateChannels(channel)); }

  // The end.

  /// Mutes the radio and powers it off, 6 s at most; does nothing while the link is not up.
  void SwitchOff();
  /// Drops what the port still has to say, 5 s at most, and closes it.
  void Close();

  // The watch.

  /// The link counts as up from now on. To be called once, when the start has brought the radio up. The owner must
  /// outlive the watch.
  void StartWatch(LinkOwner& owner);
  /// Ends the watch for good; ShuttingDown does the same. A port on trial is closed.
  void StopWatch();

  [[nodiscard]] const LinkStatus& Status() const { return status_; }
  /// Done if a command can reach the radio now. The cause is fit for a refusal: "the radio is lost: the device is
  /// gone".
  [[nodiscard]] base::Result Ready() const;

 protected:
  /// For tests, which do to the line what no user of the link can.
  [[nodiscard]] RadioSession& SessionForTests() { return session_; }

 private:
  void Beat();
  void Rest();
  void LeaveTrial();
  void Guard(const LinkOrders& orders);
  void DropStaleFrame();
  void Fail(LinkState state, std::string_view cause, Milliseconds since);
  void Repair(const LinkOrders& orders);
  [[nodiscard]] bool AnswersAgain() const;
  [[nodiscard]] Remedy NextRemedy() const;
  void BeginRemedy(Remedy remedy, const LinkOrders& orders);
  void TakeFailure(const BringUpOutcome& outcome);
  void Return(const LinkOrders& orders, bool muteAnswered);
  void Change(LinkState state, std::string_view cause);
  void SetDoubt(const std::string& doubt);

  base::EventLoop& loop_;
  const base::RunState& run_;
  base::Journal& journal_;
  RadioSession session_;
  BringUp start_;

  LinkOwner* owner_ = nullptr;  // null until the watch begins, which alone needs it

  LinkStatus status_;
  std::string identifier_;  // of the radio that is accepted; empty if unknown
  std::unique_ptr<base::Timer> tmrLink_;
  TimeJump jump_;
  PortRoster roster_;

  // While the link is up.
  TuningKeeper keeper_;
  std::uint32_t gaps_ = 0;  // seen
  int beats_ = 0;           // since the roster was brought up to date
  int partialBeats_ = 0;    // for so long nothing has come but parts of a frame

  // While it is not.
  Milliseconds lostAt_{0};
  RemedyPace pace_;
  QuietBringUp bringUp_;
  int remedies_ = 0;
  Milliseconds lastRemedy_{0};
  Milliseconds lastEarly_{0};  // the last one before its turn
  bool mutedByRemedy_ = false;
  std::string stranger_;  // identifier of another radio that answered last
};

}  // namespace kestrune::radio
