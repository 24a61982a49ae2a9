#pragma once

#include <algorithm>
#include <chrono>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "base/Ignored.h"
#include "base/RunState.h"
#include "radio/line/RadioLink.h"
#include "support/RecordingJournal.h"
#include "support/SimulatedEventLoop.h"

namespace kestrune::test {

/// Orders what the test wants, and keeps what the link reports.
class RecordingLinkOwner final : public radio::LinkOwner {
 public:
  radio::LinkOrders Ordered{.Channel = 45};
  std::vector<std::string> Lines;               ///< of the log
  std::vector<radio::LinkStatus> Changes;       ///< each status reported
  std::vector<std::chrono::milliseconds> Away;  ///< length of each outage

  [[nodiscard]] radio::LinkOrders Orders() const override { return Ordered; }
  void RadioLost(const radio::LinkStatus& status) override { Lines.push_back(radio::RadioLostLine(status)); }
  void RadioFound(const radio::LinkStatus& status, std::chrono::milliseconds away) override {
    Lines.push_back(radio::RadioFoundLine(status, away));
    Away.push_back(away);
  }
  void LinkChanged(const radio::LinkStatus& status) override { Changes.push_back(status); }
};

/// Asks the radio what the program asks it while it runs: the channels five times a second, or every two seconds while
/// a reply is missing, and the signal every five.
class Polling {
 public:
  Polling(radio::RadioSession& session, SimulatedEventLoop& loop)
      : session_(session),
        loop_(loop),
        channels_(loop.MakeTimer(std::chrono::milliseconds(200), [this] { AskChannel(); })),
        signal_(loop.MakeTimer(std::chrono::seconds(5),
                               [this] { base::Ignored(session_.pcrGetSignalLevels()); })) {
    session_.pcrChannelInfoReceived = [this](const radio::ChannelInfo&) {
      last_ = loop_.SteadyNow();
      ++Replies;
    };
  }

  int Replies = 0;

  void Start() {
    channels_->SetEnabled(true);
    signal_->SetEnabled(true);
  }
  void Stop() {
    channels_->SetEnabled(false);
    signal_->SetEnabled(false);
  }

 private:
  void AskChannel() {
    if (session_.pcrWaitingForResponse() && loop_.SteadyNow() - last_ < std::chrono::seconds(2)) return;
    base::Ignored(session_.pcrGetChannelInfo(45));
    last_ = loop_.SteadyNow();
  }

  radio::RadioSession& session_;
  SimulatedEventLoop& loop_;
  std::unique_ptr<base::Timer> channels_;
  std::unique_ptr<base::Timer> signal_;
  std::chrono::milliseconds last_{0};
};

}  // namespace kestrune::test
