#include "radio/line/RadioSession.h"

#include <utility>

#include <fmt/format.h>

#include "base/Ignored.h"
#include "base/Text.h"
#include "base/Version.h"
#include "radio/line/Commands.h"
#include "radio/line/HexText.h"
#include "radio/line/Replies.h"

namespace kestrune::radio {

namespace {

using namespace std::chrono_literals;

constexpr std::int16_t kLastChannel = 255;
// While the port opens, each byte counts; afterwards, a notification for every byte would be too many.
constexpr int kThresholdOpening = 1;
constexpr int kThreshold = 5;
constexpr auto kPartialFramePoll = 40ms;
// What is known of a channel is some eighty bytes, for which the line needs more than eighty milliseconds.
constexpr auto kMostOfAChannel = 60ms;
constexpr auto kReplyTry = 150ms;
constexpr int kReplyTries = 10;
constexpr auto kHeldTooLong = 5s;
// A device that keeps sending must not hold up the search or the end; a radio falls silent within a second.
constexpr int kDrainRounds = 50;

bool IsChannel(std::int16_t number) {
  return number >= 1 && number <= kLastChannel;
}

}  // namespace

RadioSession::RadioSession(platform::SerialPort& port, base::EventLoop& loop, const base::RunState& run,
                           base::Journal& journal)
    : port_(port),
      loop_(loop),
      run_(run),
      journal_(journal),
      tmrComm_(loop.MakeTimer(kPartialFramePoll, [this] {
        tmrComm_->SetEnabled(false);
        pcrComm_OnComm();
      })) {
  port_.SetReceiveHandler([this] { pcrComm_OnComm(); });
}

RadioSession::~RadioSession() {
  port_.SetReceiveHandler(nullptr);
  if (opening_) port_.Close();
}

// The port.

bool RadioSession::pcrPortOpen() {
  portOpen_ = port_.IsOpen();
  return portOpen_;
}

void RadioSession::SetPortOpen(bool open) {
  if (open == portOpen_ && !opening_) return;
  if (std::exchange(opening_, false)) port_.Close();
  if (open) {
    if (port_.IsOpen()) port_.Close();
    PrepareOpening();
    TakeOpening(port_.Open());
  } else {
    pcrDrainBlocked();
    port_.SetDataTerminalReady(false);
    port_.SetRequestToSend(false);
    if (port_.IsOpen()) port_.Close();
    portOpen_ = port_.IsOpen();
  }
  ForgetAwaited();
}

void RadioSession::PrepareOpening() {
  port_.SetCommPort(comPort_);
  port_.SetSettings("9600,n,8,1");
  port_.SetReceiveThreshold(kThresholdOpening);
}

void RadioSession::TakeOpening(const base::Result& opened) {
  port_.SetReceiveThreshold(kThreshold);
  if (!opened.Ok()) {
    lastError_ = opened.Cause();
    return;
  }
  portOpen_ = port_.IsOpen();
  traffic_.LineOpened(loop_.SteadyNow());
  if (!portOpen_) return;
  port_.SetDataTerminalReady(true);
  port_.SetRequestToSend(true);
}

PortTrial RadioSession::TryOpen(std::int16_t number) {
  if (pcrPortOpen() && comPort_ != number) SetPortOpen(false);
  comPort_ = number;
  SetPortOpen(true);
  return TrialOfPort();
}

PortTrial RadioSession::TrialOfPort() {
  if (pcrPortOpen()) {
    return {.Port = comPort_,
            .Why = PortTrial::Reason::NoAnswer,
            .Cause = "the port opens, but no radio answers"};
  }
  return {.Port = comPort_,
          .Why = port_.Exists() ? PortTrial::Reason::NotOpened : PortTrial::Reason::NoDevice,
          .Cause = lastError_};
}

void RadioSession::OpenLater(std::int16_t number, std::function<void(PortTrial trial)> done) {
  SetPortOpen(false);
  comPort_ = number;
  PrepareOpening();
  opening_ = true;
  port_.OpenLater([this, done = std::move(done)](const base::Result& opened) {
    opening_ = false;
    TakeOpening(opened);
    ForgetAwaited();
    done(TrialOfPort());
  });
}

bool RadioSession::PortExists(std::int16_t number) {
  port_.SetCommPort(number);
  return port_.Exists();
}

std::string RadioSession::DeviceOf(std::int16_t number) {
  port_.SetCommPort(number);
  return port_.Device();
}

void RadioSession::DropPartialFrame() {
  reader_.DropPending();
  tmrComm_->SetEnabled(false);
}

void RadioSession::pcrFindPort(const std::function<void(std::int16_t number)>& announce,
                               const std::function<void(PortTrial trial)>& report) {
  comPort_ = 0;
  replies_.pcrRadioID.clear();
  for (std::int16_t number = 1; number <= kLastPort && !run_.ShuttingDown; ++number) {
    SetPortOpen(false);
    announce(number);
    PortTrial trial = TryOpen(number);
    if (pcrPortOpen()) {
      journal_.DebugPrint(fmt::format("Opened port {}", number));
      DrainInput();
      SleepAndPump(500ms);
      ForgetAwaited();
      if (pcrPowerOn(false)) {
        comPort_ = number;
        return;
      }
    }
    ForgetAwaited();
    SetPortOpen(false);
    report(std::move(trial));
  }
}

void RadioSession::DrainInput() {
  for (int round = 0; round < kDrainRounds && !port_.Input().empty(); ++round) SleepAndPump(100ms);
}

// Operations.

bool RadioSession::Usable() {
  return pcrPortOpen() && !onTrial_;
}

bool RadioSession::pcrPowerOn(bool bypassBlock) {
  if (!Usable()) return false;
  replies_.pcrPowerReplySeen = false;
  if (bypassBlock) ForgetAwaited();
  for (const command::Step& step : command::kBeforePowerOn) {
    Send(step.Frame, bypassBlock);
    loop_.Sleep(step.Pause);
  }
  Send(command::kPowerOn, bypassBlock);
  if (!WaitFor([this] { return replies_.pcrPowerReplySeen; }, 120, 40ms)) return false;
  for (const command::Step& step : command::kAfterPowerOn) {
    Send(step.Frame, bypassBlock);
    loop_.Sleep(step.Pause);
  }
  return true;
}

bool RadioSession::pcrPowerOff() {
  if (!Usable()) return false;
  replies_.pcrPowerReplySeen = false;
  Send(command::kPowerOff);
  return WaitFor([this] { return replies_.pcrPowerReplySeen; }, 30, kReplyTry);
}

std::string RadioSession::pcrRadioID() {
  if (!replies_.pcrRadioID.empty()) return replies_.pcrRadioID;
  if (!Usable()) return {};
  replies_.pcrRadioIDSeen = false;
  replies_.pcrPowerIsOff = false;
  Send(command::kRadioID);
  const auto answered = [this] {
    if (replies_.pcrRadioIDSeen) return true;
    // The power-on reply brings the identifier too.
    return replies_.pcrPowerIsOff && pcrPowerOn(false);
  };
  base::Ignored(WaitFor(answered, kReplyTries, kReplyTry));
  return replies_.pcrRadioID;
}

bool RadioSession::pcrSelectChannel(std::int16_t channelNumber) {
  if (!Usable() || !IsChannel(channelNumber)) return false;
  Send(command::SelectChannel(channelNumber));
  const auto confirmed = [this, channelNumber] {
    return replies_.pcrChannelSetSeen && replies_.pcrChannelSetNumber == channelNumber;
  };
  return WaitFor(confirmed, kReplyTries, kReplyTry);
}

bool RadioSession::pcrMute(bool muteOn) {
  if (!Usable()) return false;
  Send(muteOn ? command::kMuteOn : command::kMuteOff);
  return WaitFor([this] { return replies_.pcrMuteReplySeen; }, kReplyTries, kReplyTry);
}

bool RadioSession::pcrGetSignalLevels() {
  if (!Usable()) return false;
  Send(command::kSignalLevels);
  return true;
}

bool RadioSession::pcrGetChannelInfo(std::int16_t channelNumber) {
  if (Usable() && IsChannel(channelNumber)) {
    Send(command::ChannelInfo(channelNumber));
    port_.HoldReceiveHandler(kMostOfAChannel);
  }
  return false;
}

bool RadioSession::pcrEnumerateChannels(std::int16_t nextChannel) {
  if (!Usable()) return false;
  if (nextChannel != 0) {
    Send(command::NextChannelInfo(nextChannel));
  } else {
    Send(command::kFirstChannelInfo);
  }
  port_.HoldReceiveHandler(kMostOfAChannel);
  return true;
}

// The values of the latest replies.

std::string RadioSession::pcrGenre() const {
  return std::string(base::Trim(replies_.pcrGenre));
}

std::string RadioSession::pcrStation() const {
  return std::string(base::Trim(replies_.pcrStation));
}

std::string RadioSession::pcrArtist() const {
  return std::string(base::Trim(replies_.pcrArtist));
}

std::string RadioSession::pcrSong() const {
  return std::string(base::Trim(replies_.pcrSong));
}

std::string RadioSession::pcrVersion() {
  return fmt::format("{}.{}.{} NOT FOR COMMERCIAL USE", base::kVersionMajor, base::kVersionMinor,
                     base::kVersionRevision);
}

// Frames out.

void RadioSession::pcrRawSend(std::string_view frame, bool bypassBlock) {
  if (holdCommands_ && !bypassBlock) {
    while (blockedCmds_.Full() && pcrPortOpen()) SleepAndPump(10ms);
    if (blockedCmds_.Count() > 0 || waitingForResponse_) {
      if (!blockedCmds_.Full()) blockedCmds_.Push(frame);
      return;
    }
  }
  Write(frame);
}

void RadioSession::Write(std::string_view frame) {
  TraceFrame('>', frame);
  waitingForResponse_ = true;
  traffic_.Sent(frame, loop_.SteadyNow());
  base::Ignored(port_.Output(frame));
  lastSendTime_ = loop_.SteadyNow();
}

void RadioSession::pcrSendBinary(std::string_view frame) {
  if (pcrPortOpen()) pcrRawSend(frame, true);
}

void RadioSession::pcrDrainBlocked() {
  while (pcrNumBlockedCmds() >= 1 && port_.IsOpen()) SleepAndPump(100ms);
}

void RadioSession::Send(std::string_view hexText, bool bypassBlock) {
  pcrRawSend(pcrHexToBinary(hexText), bypassBlock);
}

void RadioSession::ForgetAwaited() {
  blockedCmds_.Clear();
  waitingForResponse_ = false;
}

void RadioSession::SleepAndPump(Milliseconds duration) {
  loop_.Sleep(duration);
  loop_.PumpEvents();
}

bool RadioSession::WaitFor(const std::function<bool()>& condition, int tries, Milliseconds each) {
  for (int count = 0; count < tries; ++count) {
    loop_.PumpEvents();
    if (condition()) return true;
    SleepAndPump(each);
  }
  return false;
}

// Frames in.

void RadioSession::pcrComm_OnComm() {
  loop_.PumpEvents();
  // A notification can come while events run inside the receive path. Its bytes stay in the port, and the outer
  // run reads them at its end.
  if (inOnComm_) return;
  inOnComm_ = true;
  reader_.BeginRun();
  while (ReceiveRound()) {
  }
  inOnComm_ = false;
}

// One round: drains the port, or else handles all whole frames. False ends the run.
bool RadioSession::ReceiveRound() {
  if (run_.ShuttingDown || !pcrPortOpen()) return false;
  if (TakeInput()) {
    loop_.PumpEvents();
    return true;
  }
  bool messageSeen = false;
  while (reader_.HasCandidate()) {
    loop_.PumpEvents();
    if (reader_.Next(replies_.pcrLastResponse) == FrameStep::Incomplete) {
      tmrComm_->SetInterval(kPartialFramePoll);
      tmrComm_->SetEnabled(true);
      // The poll takes what comes until then; each byte that wakes the program before costs more than it brings.
      port_.HoldReceiveHandler(kPartialFramePoll);
      return false;
    }
    TraceFrame('<', replies_.pcrLastResponse);
    messageSeen = HandleFrame(replies_.pcrLastResponse);
    if (blockedCmds_.Count() == 0) waitingForResponse_ = false;
    loop_.PumpEvents();
  }
  SendBlocked(messageSeen);
  if (!TakeInput()) return false;
  loop_.PumpEvents();
  return true;
}

bool RadioSession::TakeInput() {
  const std::string bytes = port_.Input();
  reader_.Append(bytes);
  return !bytes.empty();
}

void RadioSession::SendBlocked(bool messageSeen) {
  if (blockedCmds_.Count() == 0) return;
  const auto since = std::chrono::floor<std::chrono::seconds>(loop_.SteadyNow() - lastSendTime_);
  if (messageSeen || since > kHeldTooLong) pcrRawSend(blockedCmds_.Pop(), true);
}

// False for a type that the program does not know.
bool RadioSession::HandleFrame(std::string_view frame) {
  traffic_.Received(frame, loop_.SteadyNow());
  if (onTrial_) return IsReply(frame);
  switch (static_cast<ReplyType>(ByteAt(frame, 4))) {
    case ReplyType::PowerOn:
      replies_.pcrRadioID = DecodePowerOnRadioID(frame);
      replies_.pcrPowerReplySeen = true;
      Trace("!PowerOn");
      return true;
    case ReplyType::PowerOff:
      replies_.pcrPowerReplySeen = true;
      Trace("!PowerOff");
      return true;
    case ReplyType::ChannelSet:
      if (const auto channel = DecodeChannelSet(frame)) {
        replies_.pcrChannelSetNumber = *channel;
        replies_.pcrChannelSetSeen = true;
      }
      Trace(fmt::format("!ChannelSetOK {}", ByteAt(frame, 7)));
      return true;
    case ReplyType::Mute:
      replies_.pcrMuteState = DecodeMute(frame);
      replies_.pcrMuteReplySeen = true;
      Trace(fmt::format("!Mute {}", ByteAt(frame, 7)));
      return true;
    case ReplyType::ChannelInfo:
      HandleChannelInfo(frame);
      return true;
    case ReplyType::RadioID:
      replies_.pcrRadioID = DecodeRadioID(frame);
      replies_.pcrRadioIDSeen = true;
      Trace("!RadioID " + replies_.pcrRadioID);
      return true;
    case ReplyType::Signal:
      HandleSignal(frame);
      return true;
    case ReplyType::Silent:
      return true;
    case ReplyType::SetupAgain:
      Send(command::kSetup, true);
      // The radio needs quiet after its setup, so nothing is served meanwhile.
      loop_.Sleep(500ms);
      return true;
    case ReplyType::PowerIsOff:
      replies_.pcrPowerIsOff = true;
      Trace("!PowerIsOffCmdReject");
      return true;
  }
  Trace(fmt::format("!InvalidMsgType {:02X}", ByteAt(frame, 4)));
  return false;
}

void RadioSession::HandleChannelInfo(std::string_view frame) {
  const ChannelInfo info = DecodeChannelInfo(frame);
  replies_.pcrChannel = info.Channel;
  replies_.pcrStation = info.Station;
  replies_.pcrGenre = info.Genre;
  replies_.pcrArtist = info.Artist;
  replies_.pcrSong = info.Song;
  Trace(fmt::format("!ChannelInfo {}", info.Channel));
  if (pcrChannelInfoReceived) pcrChannelInfoReceived(info);
}

void RadioSession::HandleSignal(std::string_view frame) {
  const SignalQuality quality = DecodeSignal(frame);
  replies_.pcrSat1SignalQuality = quality.Satellite1;
  replies_.pcrSat2SignalQuality = quality.Satellite2;
  replies_.pcrTerSignalQuality = quality.Terrestrial;
  Trace(fmt::format("!Signal {} {} {}", quality.Satellite1, quality.Satellite2, quality.Terrestrial));
  if (pcrSignalReceived) pcrSignalReceived(quality.Satellite1, quality.Satellite2, quality.Terrestrial);
}

void RadioSession::TraceFrame(char direction, std::string_view frame) {
  if (!journal_.Tracing()) return;
  std::string line{direction, ' '};
  line.reserve(2 + frame.size() * 3);
  for (const char byte : frame) {
    line += pcrBinaryToHex({&byte, 1});
    line += ' ';
  }
  journal_.Trace(line);
}

void RadioSession::Trace(std::string_view text) {
  if (journal_.Tracing()) journal_.Trace(text);
}

}  // namespace kestrune::radio
