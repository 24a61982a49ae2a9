#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "base/EventLoop.h"
#include "base/Journal.h"
#include "base/Result.h"
#include "base/RunState.h"
#include "radio/line/LinkOwner.h"
#include "radio/line/LinkState.h"
#include "radio/line/PortRoster.h"
#include "radio/line/QuietBringUp.h"
#include "radio/line/RadioSession.h"
#include "radio/line/RemedyPace.h"
#include "radio/line/Replies.h"
#include "radio/line/TimeJump.h"
#include "radio/line/TuningKeeper.h"

namespace kestrune::radio {

/// Watches over the line once the start has brought the radio up, and brings it back for as long as the program runs.
///
/// 1. It notices a line that hung up (Lost, within half a second), ten requests in a row without any reply (Silent)
///    and three refusals "powered off" in a row (Off). A reply lost now and then raises nothing, nor does a frame that
///    never ends: it is dropped when three requests have gone unanswered, as no frame takes so long.
/// 2. Remedies follow one another at the pace of RemedyPace: ask, power on, close and open
///    again; after a hang-up, the device under its own or another number. Only a radio with the identifier of
///    the start is accepted; if that is unknown, any on the same number. The first remedy of an outage is due at
///    once, and so is the next one after a jump of the clocks, with which the pace begins anew. A radio that answers
///    again by itself is asked who it is before its turn.
/// 3. When the link comes up, the radio has been put on the channel and the mute that its owner orders. While it is up,
///    TuningKeeper keeps it there; the channel and the mute are sent once more after a gap in the replies and after a
///    jump of the clocks, when the radio may have lost its power.
/// 4. No call waits, and nothing is done within another's wait. With `Watch` off nothing is done at all.
class RadioLink {
 public:
  using Milliseconds = std::chrono::milliseconds;

  /// All must outlive the link.
  RadioLink(RadioSession& session, base::EventLoop& loop, const base::RunState& run, base::Journal& journal,
            LinkOwner& owner);

  /// The link counts as up from now on. To be called once, when the start has brought the radio up: the port is open,
  /// and the session knows its number and the identifier.
  void Start();
  /// Ends the watch for good; ShuttingDown does the same. A port on trial is closed.
  void Stop();

  [[nodiscard]] const LinkStatus& Status() const { return status_; }
  /// Done if a command can reach the radio now. The cause is fit for a refusal: "the radio is lost: the device is
  /// gone".
  [[nodiscard]] base::Result Ready() const;
  /// The signal as the radio reported it last. Nothing before its first report, nor while the link is not up, nor after
  /// that until the radio reports anew.
  [[nodiscard]] std::optional<SignalQuality> Signal() const;

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

  RadioSession& session_;
  base::EventLoop& loop_;
  const base::RunState& run_;
  base::Journal& journal_;
  LinkOwner& owner_;

  LinkStatus status_;
  std::string identifier_;  // of the radio that is accepted; empty if unknown
  std::unique_ptr<base::Timer> tmrLink_;
  TimeJump jump_;
  PortRoster roster_;

  // While the link is up.
  TuningKeeper keeper_;
  std::uint32_t gaps_ = 0;           // seen
  std::uint32_t signalReplies_ = 0;  // before it came up
  int beats_ = 0;                    // since the roster was brought up to date
  int partialBeats_ = 0;             // for so long nothing has come but parts of a frame

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
