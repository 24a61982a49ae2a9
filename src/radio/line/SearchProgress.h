#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace kestrune::radio {

/// How far the search for the radio has come. Each try of a port that has a device is a step.
struct SearchProgress {
  std::int16_t Port = 0;    ///< that is being tried, 1 to 255; 0 before the first
  std::string Device = {};  ///< its name, as platform::SerialPort has it
  bool Searching = false;   ///< all ports are tried in turn, not the known one
  int Round = 0;            ///< which time this is, from 1
  int Rounds = 0;           ///< how often the port, or all ports, are tried at most
  int StepsDone = 0;        ///< of the whole search
  int Steps = 0;       ///< at most, this one included, as far as can be told from the devices that are there
  bool Found = false;  ///< the radio answers on that port, and the search is over
  std::chrono::milliseconds Began{0};    ///< the moment at which this step began, on the steady clock
  std::chrono::milliseconds Longest{0};  ///< what it takes if no radio answers
};

}  // namespace kestrune::radio
