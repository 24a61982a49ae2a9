#pragma once

#include "base/Journal.h"
#include "radio/channels/Channels.h"
#include "radio/line/RadioLink.h"
#include "recorder/Outside.h"
#include "recorder/State.h"

namespace kestrune::recorder {

/// The radio's side of a unit: the link to it, and the channels that come of it.
struct RadioSide {
  /// All must outlive the object.
  RadioSide(const Outside& outside, State& state, base::Journal& journal, radio::ChannelEvents& events)
      : Link(outside.pcrComm, outside.Loop, state.Run, journal),
        Channels(state.Radio, state.Run,
                 {.Link = Link, .Files = outside.Files, .Loop = outside.Loop, .Journal = journal}, events) {}

  radio::RadioLink Link;
  radio::Channels Channels;
};

}  // namespace kestrune::recorder
