#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "base/RunState.h"
#include "radio/line/OpenLink.h"
#include "support/Bytes.h"
#include "support/RadioFrames.h"
#include "support/RecordingJournal.h"
#include "support/ScriptedSerialPort.h"
#include "support/SimulatedEventLoop.h"

namespace kestrune::test {

/// A session on a scripted line, and the link that owns it.
class SessionFixture : public ::testing::Test {
 protected:
  using Milliseconds = std::chrono::milliseconds;
  using Strings = std::vector<std::string>;

  SessionFixture() {
    session.pcrChannelInfoReceived = [this](const radio::ChannelInfo& info) { infos.push_back(info); };
    session.pcrSignalReceived = [this](std::int16_t satellite1, std::int16_t satellite2,
                                       std::int16_t terrestrial) {
      signalReplies.push_back(std::to_string(satellite1) + " " + std::to_string(satellite2) + " " +
                              std::to_string(terrestrial));
    };
  }

  void OpenPort(std::int16_t number = 3) {
    session.SetCOMPort(number);
    session.SetPortOpen(true);
  }
  void FindPort() {
    session.pcrFindPort([](std::int16_t /*number*/) {},
                        [this](const radio::PortTrial& trial) { failedTrials.push_back(trial); });
  }
  void Arrive(std::string_view hex) {
    port.Arrive(Bytes(hex));
    loop.Run(Milliseconds(0));
  }
  // The hex text of every frame written since the last call, as typed by hand.
  [[nodiscard]] bool Wrote(const Strings& hexTexts) {
    Strings frames;
    for (const std::string& text : hexTexts) frames.push_back(Bytes(text));
    return port.TakeWrites() == frames;
  }
  template <typename Call>
  [[nodiscard]] Milliseconds TimeOf(Call call) {
    const Milliseconds before = loop.SteadyNow();
    call();
    return loop.SteadyNow() - before;
  }

  SimulatedEventLoop loop;
  ScriptedSerialPort port{loop};
  base::RunState run;
  RecordingJournal journal;
  OpenLink link{port, loop, run, journal};
  radio::RadioSession& session = link.SessionForTests();
  std::vector<radio::ChannelInfo> infos;
  Strings signalReplies;
  std::vector<radio::PortTrial> failedTrials;
};

}  // namespace kestrune::test
