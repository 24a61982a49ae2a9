#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "receiver/Dice.h"
#include "receiver/ReceiverModel.h"

namespace kestrune::receiver {

/// Bytes on their way to the program.
struct Sending {
  std::string Bytes;
  std::chrono::milliseconds Delay{0};  ///< how long the line stays idle before the first byte
};

/// What somebody asked for: a name, and when it is to strike.
struct MisbehaviourWish {
  std::string Name;
  double Rate = 0.1;  ///< the probability for each command, from 0 to 1
  /// If set, it strikes once instead: at the first command from this moment on, since the receiver's start.
  std::optional<std::chrono::milliseconds> At = std::nullopt;
};

/// A fault with a name, wrapped around an honest receiver. The same seed gives the same strikes.
class Misbehaviour {
 public:
  Misbehaviour(MisbehaviourWish wish, std::uint64_t seed);
  virtual ~Misbehaviour() = default;
  Misbehaviour(const Misbehaviour&) = delete;
  Misbehaviour& operator=(const Misbehaviour&) = delete;

  [[nodiscard]] const std::string& Name() const { return wish_.Name; }
  /// How often it has struck.
  [[nodiscard]] int Strikes() const { return strikes_; }

  /// Before the receiver answers. False: the command never reaches it.
  [[nodiscard]] virtual bool BeforeAnswer(std::chrono::milliseconds now, std::string_view command,
                                          ReceiverModel& model);
  /// Spoils the answer.
  virtual void AfterAnswer(std::chrono::milliseconds now, std::vector<Sending>& sendings);

 protected:
  /// Whether it strikes at this command; to be called once for a command at most.
  [[nodiscard]] bool StrikesNow(std::chrono::milliseconds now);
  [[nodiscard]] Dice& Chance() { return dice_; }

 private:
  MisbehaviourWish wish_;
  Dice dice_;
  int strikes_ = 0;
};

/// A misbehaviour by name, and what it does.
struct MisbehaviourName {
  std::string_view Name;
  std::string_view Meaning;
};
[[nodiscard]] const std::vector<MisbehaviourName>& MisbehaviourNames();

/// Null if the name is unknown.
[[nodiscard]] std::unique_ptr<Misbehaviour> MakeMisbehaviour(const MisbehaviourWish& wish,
                                                             std::uint64_t seed);

}  // namespace kestrune::receiver
