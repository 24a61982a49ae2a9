#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "receiver/Dice.h"
#include "receiver/ReceiverModel.h"

namespace kestrune::receiver {

/// Bytes on their way to the program.
struct Sending {
  std::string Bytes;
  std::chrono::milliseconds Delay{0};  ///< for how long the line rests before the first byte
};

/// A fault with a name, laid around an honest receiver. It strikes with its probability at each command; the
/// same seed gives the same strikes.
class Misbehaviour {
 public:
  Misbehaviour(std::string name, double rate, std::uint64_t seed);
  virtual ~Misbehaviour() = default;
  Misbehaviour(const Misbehaviour&) = delete;
  Misbehaviour& operator=(const Misbehaviour&) = delete;

  [[nodiscard]] const std::string& Name() const { return name_; }
  /// How often it has struck.
  [[nodiscard]] int Strikes() const { return strikes_; }

  /// Before the receiver answers.
  virtual void BeforeAnswer(std::string_view command, ReceiverModel& model);
  /// What it answered, to be spoiled.
  virtual void AfterAnswer(std::chrono::milliseconds now, std::vector<Sending>& sendings);

 protected:
  /// Throws the dice for one command.
  [[nodiscard]] bool Strikes(double rate);
  [[nodiscard]] double Rate() const { return rate_; }
  [[nodiscard]] Dice& Chance() { return dice_; }

 private:
  std::string name_;
  double rate_;
  Dice dice_;
  int strikes_ = 0;
};

/// A misbehaviour by name, and what it does.
struct MisbehaviourName {
  std::string_view Name;
  std::string_view Meaning;
};
[[nodiscard]] const std::vector<MisbehaviourName>& MisbehaviourNames();

/// What somebody asked for: a name and a probability from 0 to 1 for each command.
struct MisbehaviourWish {
  std::string Name;
  double Rate = 0.1;
};

/// Null if the name is unknown.
[[nodiscard]] std::unique_ptr<Misbehaviour> MakeMisbehaviour(const MisbehaviourWish& wish,
                                                             std::uint64_t seed);

}  // namespace kestrune::receiver
