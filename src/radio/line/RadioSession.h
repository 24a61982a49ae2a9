#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "base/EventLoop.h"
#include "base/Journal.h"
#include "base/RunState.h"
#include "platform/SerialPort.h"
#include "radio/line/ChannelInfo.h"
#include "radio/line/FrameReader.h"
#include "radio/line/HoldingQueue.h"
#include "radio/line/LineTraffic.h"
#include "radio/line/PortTrial.h"
#include "radio/line/ReplyState.h"

namespace kestrune::radio {

/// The conversation with the radio: commands, replies, and the operations that wait for a reply.
///
/// Every wait is a bounded count of short sleeps between which events run, so timers and windows keep working and
/// may call the same operations inside it. Nothing here fails loudly: an operation whose reply does not come
/// returns false or an empty text. Once ShuttingDown is set no reply is read any more, and each wait runs
/// out.
class RadioSession {
 public:
  static constexpr std::int16_t kLastPort = 16;

  /// All must outlive the session, which sets the port's receive handler.
  RadioSession(platform::SerialPort& port, base::EventLoop& loop, const base::RunState& run,
               base::Journal& journal);
  ~RadioSession();
  RadioSession(const RadioSession&) = delete;
  RadioSession& operator=(const RadioSession&) = delete;

  /// Called from the receive path after every channel info reply and every signal reply. Further frames are
  /// read only after the call has returned, events or not.
  std::function<void(const ChannelInfo& info)> pcrChannelInfoReceived;
  std::function<void(std::int16_t satellite1, std::int16_t satellite2, std::int16_t terrestrial)>
      pcrSignalReceived;

  // The port.

  /// Whether the port is open, as the port itself reports; this updates the last known state.
  [[nodiscard]] bool pcrPortOpen();
  /// Opens or closes the port; does nothing if that is its last known state. pcrPortOpen and pcrLastError show the
  /// outcome.
  void SetPortOpen(bool open);
  [[nodiscard]] std::int16_t pcrCOMPort() const { return comPort_; }
  /// Number of the port that the next opening takes, 1 to 16.
  void SetCOMPort(std::int16_t number) { comPort_ = number; }
  /// Why the last opening that failed did, as base::Result has it; never cleared.
  [[nodiscard]] const std::string& pcrLastError() const { return lastError_; }
  /// Tries the ports 1 to 16 until a radio powers on, and leaves that port open. Only pcrPortOpen shows whether
  /// one was found: pcrCOMPort is 16 after a search in vain. Each port is announced, while none is open, and each
  /// without a radio is reported.
  void pcrFindPort(const std::function<void(std::int16_t number)>& announce,
                   const std::function<void(PortTrial trial)>& report);
  /// Opens the port of this number, unless it is open already; another port is closed first. The reason is
  /// NoAnswer if the port is open now: no radio has been asked for there yet.
  [[nodiscard]] PortTrial TryOpen(std::int16_t number);
  /// Reads and drops what the port has until it has nothing, 100 ms between two reads; at most fifty times, for a
  /// device may keep sending.
  void DrainInput();

  /// The same as TryOpen, on a port that is always closed first, and without a wait: `done` runs from the event loop,
  /// unless the port is closed before.
  void OpenLater(std::int16_t number, std::function<void(PortTrial trial)> done);
  /// Whether there is a device with this number, 1 to 16.
  [[nodiscard]] bool PortExists(std::int16_t number);
  /// The name of the device with this number, as platform::SerialPort has it.
  [[nodiscard]] std::string DeviceOf(std::int16_t number);
  /// While a port is on trial it is not known yet which radio answers there. It counts as closed for all operations
  /// below, and replies reach Traffic and nothing else; only pcrSendBinary writes to it.
  void SetOnTrial(bool on) { onTrial_ = on; }
  [[nodiscard]] bool OnTrial() const { return onTrial_; }
  /// Whether bytes have come that are no whole frame yet.
  [[nodiscard]] bool HasPartialFrame() const { return !reader_.Pending().empty(); }
  /// Drops the bytes of a frame that is not complete.
  void DropPartialFrame();
  /// What has passed over the line.
  [[nodiscard]] const LineTraffic& Traffic() const { return traffic_; }
  /// What the radio has confirmed of its channel counts no more.
  void DoubtTuning() { traffic_.DoubtTuning(); }

  // Operations. They return false at once if the port is closed.

  /// At most 400 ms of blocking sleep, 4.8 s of waiting, and 400 ms of blocking sleep again.
  /// With `bypassBlock`, what was awaited is forgotten first.
  [[nodiscard]] bool pcrPowerOn(bool bypassBlock);
  /// Waits 4.5 s at most.
  [[nodiscard]] bool pcrPowerOff();
  /// The identifier, if it is known; otherwise the radio is asked for it, for 1.5 s at most, and powered on if it is
  /// off. May be empty.
  [[nodiscard]] std::string pcrRadioID();
  /// Channel 1 to 255; waits 1.5 s at most. True at once for the channel that was confirmed last.
  [[nodiscard]] bool pcrSelectChannel(std::int16_t channelNumber);
  /// Waits 1.5 s at most, and not at all after the first mute reply of the run.
  [[nodiscard]] bool pcrMute(bool muteOn);

  // These send a request and do not wait: the periodic ticks call them.

  bool pcrGetSignalLevels();
  /// Channel 1 to 255. The result is false in every case, also when the request went out.
  bool pcrGetChannelInfo(std::int16_t channelNumber);
  /// Asks for the channel after the given one in the radio's list, for the first one after 0.
  bool pcrEnumerateChannels(std::int16_t nextChannel);

  // The values of the latest replies.

  [[nodiscard]] const ReplyState& Replies() const { return replies_; }
  [[nodiscard]] std::int16_t pcrChannel() const { return replies_.pcrChannel; }
  [[nodiscard]] std::string pcrGenre() const;
  [[nodiscard]] std::string pcrStation() const;
  [[nodiscard]] std::string pcrArtist() const;
  [[nodiscard]] std::string pcrSong() const;
  [[nodiscard]] std::int16_t pcrSat1SignalQuality() const { return replies_.pcrSat1SignalQuality; }
  [[nodiscard]] std::int16_t pcrSat2SignalQuality() const { return replies_.pcrSat2SignalQuality; }
  [[nodiscard]] std::int16_t pcrTerSignalQuality() const { return replies_.pcrTerSignalQuality; }
  [[nodiscard]] const std::string& pcrLastResponse() const { return replies_.pcrLastResponse; }
  /// Bytes dropped so far because no frame began with them.
  [[nodiscard]] std::uint64_t JunkBytes() const { return reader_.JunkBytes(); }

  /// The program's version. Nothing in the program calls it; it is part of the radio layer's public surface.
  [[nodiscard]] static std::string pcrVersion();

  // Frames.

  /// Writes a frame at once, whatever is awaited. A failure of the port is ignored.
  void pcrRawSend(std::string_view frame, bool bypassBlock);
  /// The same, if the port is open.
  void pcrSendBinary(std::string_view frame);
  /// True from a write until the next frame of any kind.
  [[nodiscard]] bool pcrWaitingForResponse() const { return waitingForResponse_; }
  [[nodiscard]] std::int16_t pcrNumBlockedCmds() const { return blockedCmds_.Count(); }
  /// Waits while the port is open and the holding queue is not empty; with the queue off, not at all.
  void pcrDrainBlocked();
  /// Switches the holding queue on or off: with it on, a frame that is sent without `bypassBlock` while an answer
  /// is awaited goes out after that answer. The program leaves it off, because a radio that leaves one command
  /// unanswered would hold up all others; only tests switch it on.
  void HoldCommands(bool on) { holdCommands_ = on; }

  /// The receive path: reads all that the port has received and handles every whole frame in it. The port's
  /// notification and tmrComm call it; a call from within itself does nothing.
  void pcrComm_OnComm();

 private:
  using Milliseconds = std::chrono::milliseconds;

  [[nodiscard]] bool Usable();
  void PrepareOpening();
  void TakeOpening(const base::Result& opened);
  [[nodiscard]] PortTrial TrialOfPort();
  void Send(std::string_view hexText, bool bypassBlock = false);
  void Write(std::string_view frame);
  void ForgetAwaited();
  void SleepAndPump(Milliseconds duration);
  [[nodiscard]] bool WaitFor(const std::function<bool()>& condition, int tries, Milliseconds each);

  [[nodiscard]] bool ReceiveRound();
  [[nodiscard]] bool TakeInput();
  [[nodiscard]] bool HandleFrame(std::string_view frame);
  void HandleChannelInfo(std::string_view frame);
  void HandleSignal(std::string_view frame);
  void SendBlocked(bool messageSeen);
  void TraceFrame(char direction, std::string_view frame);
  void Trace(std::string_view text);

  platform::SerialPort& port_;
  base::EventLoop& loop_;
  const base::RunState& run_;
  base::Journal& journal_;

  std::int16_t comPort_ = 0;
  bool portOpen_ = false;  // the last known state
  bool opening_ = false;   // OpenLater has not called back yet
  bool onTrial_ = false;
  std::string lastError_;

  bool waitingForResponse_ = false;
  Milliseconds lastSendTime_{0};
  HoldingQueue blockedCmds_;
  bool holdCommands_ = false;

  LineTraffic traffic_;
  FrameReader reader_;
  bool inOnComm_ = false;
  ReplyState replies_;

  std::unique_ptr<base::Timer> tmrComm_;
};

}  // namespace kestrune::radio
