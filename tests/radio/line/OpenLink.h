#pragma once

#include "radio/line/RadioLink.h"

namespace kestrune::test {

/// A link whose session the test may use too.
class OpenLink final : public radio::RadioLink {
 public:
  using RadioLink::RadioLink;
  using RadioLink::SessionForTests;
};

}  // namespace kestrune::test
