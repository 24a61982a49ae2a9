#pragma once

#include "base/Journal.h"
#include "radio/channels/Channels.h"
#include "radio/line/BringUp.h"
#include "radio/line/RadioSession.h"
#include "recorder/Outside.h"
#include "recorder/State.h"

namespace kestrune::recorder {

/// The radio's side of a unit: the conversation on the line, and the channels that come of it.
struct RadioSide {
  /// All must outlive the object.
  RadioSide(const Outside& outside, State& state, base::Journal& journal, radio::ChannelEvents& events)
      : Session(outside.pcrComm, outside.Loop, state.Run, journal),
        BringUp(Session, outside.Loop, state.Run, journal),
        Channels(state.Radio, state.Run,
                 {.Session = Session, .Files = outside.Files, .Loop = outside.Loop, .Journal = journal},
                 events) {}

  radio::RadioSession Session;
  radio::BringUp BringUp;
  radio::Channels Channels;
};

}  // namespace kestrune::recorder
