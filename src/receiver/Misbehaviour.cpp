#include "receiver/Misbehaviour.h"

#include <utility>

namespace kestrune::receiver {
namespace {

using std::chrono::milliseconds;

constexpr std::uint8_t kSelectType = 0x10;

class Junk final : public Misbehaviour {
 public:
  using Misbehaviour::Misbehaviour;
  void AfterAnswer(milliseconds /*now*/, std::vector<Sending>& sendings) override {
    if (!Strikes(Rate())) return;
    std::string bytes(static_cast<std::size_t>(Chance().Between(1, 12)), '\0');
    for (char& byte : bytes) byte = static_cast<char>(Chance().Between(0, 255));
    sendings.insert(sendings.begin(), {std::move(bytes), milliseconds(0)});
  }
};

class Split final : public Misbehaviour {
 public:
  using Misbehaviour::Misbehaviour;
  void AfterAnswer(milliseconds /*now*/, std::vector<Sending>& sendings) override {
    if (sendings.empty() || sendings.back().Bytes.size() < 2 || !Strikes(Rate())) return;
    Sending& whole = sendings.back();
    const int size = static_cast<int>(whole.Bytes.size());
    const auto cut = static_cast<std::size_t>(Chance().Between(1, size - 1));
    Sending rest{whole.Bytes.substr(cut), milliseconds(Chance().Between(100, 400))};
    whole.Bytes.resize(cut);
    sendings.push_back(std::move(rest));
  }
};

class Lost final : public Misbehaviour {
 public:
  using Misbehaviour::Misbehaviour;
  void AfterAnswer(milliseconds /*now*/, std::vector<Sending>& sendings) override {
    if (!sendings.empty() && Strikes(Rate())) sendings.clear();
  }
};

class Refuse final : public Misbehaviour {
 public:
  using Misbehaviour::Misbehaviour;
  void BeforeAnswer(std::string_view command, ReceiverModel& model) override {
    const bool select = !command.empty() && static_cast<std::uint8_t>(command[0]) == kSelectType;
    if (select && Strikes(Rate())) model.RefuseNextSelect();
  }
};

class Silence final : public Misbehaviour {
 public:
  using Misbehaviour::Misbehaviour;
  void AfterAnswer(milliseconds now, std::vector<Sending>& sendings) override {
    if (now >= until_ && Strikes(Rate())) until_ = now + kLength;
    if (now < until_) sendings.clear();
  }

 private:
  static constexpr milliseconds kLength{5000};
  milliseconds until_{0};
};

class PowerLoss final : public Misbehaviour {
 public:
  using Misbehaviour::Misbehaviour;
  void BeforeAnswer(std::string_view /*command*/, ReceiverModel& model) override {
    if (model.PoweredOn() && Strikes(Rate())) model.SetPower(false);
  }
};

class Corrupt final : public Misbehaviour {
 public:
  using Misbehaviour::Misbehaviour;
  void AfterAnswer(milliseconds /*now*/, std::vector<Sending>& sendings) override {
    if (sendings.empty() || sendings.back().Bytes.empty() || !Strikes(Rate())) return;
    std::string& bytes = sendings.back().Bytes;
    const auto place = static_cast<std::size_t>(Chance().Between(0, static_cast<int>(bytes.size()) - 1));
    bytes[place] = static_cast<char>(static_cast<std::uint8_t>(bytes[place]) ^ Chance().Between(1, 255));
  }
};

class Late final : public Misbehaviour {
 public:
  using Misbehaviour::Misbehaviour;
  void AfterAnswer(milliseconds /*now*/, std::vector<Sending>& sendings) override {
    if (sendings.empty() || !Strikes(Rate())) return;
    sendings.front().Delay += milliseconds(Chance().Between(1000, 3000));
  }
};

/// A frame that nobody asked for, behind the answer.
class Unasked final : public Misbehaviour {
 public:
  Unasked(std::string name, double rate, std::uint64_t seed, std::string payload)
      : Misbehaviour(std::move(name), rate, seed), payload_(std::move(payload)) {}
  void AfterAnswer(milliseconds /*now*/, std::vector<Sending>& sendings) override {
    if (Strikes(Rate())) sendings.push_back({FrameOf(payload_), milliseconds(0)});
  }

 private:
  std::string payload_;
};

}  // namespace

// The seed is mixed with the name, so that one misbehaviour strikes alike with and without the others.
Misbehaviour::Misbehaviour(std::string name, double rate, std::uint64_t seed)
    : name_(std::move(name)), rate_(rate), dice_(seed ^ HashOf(name_)) {}

void Misbehaviour::BeforeAnswer(std::string_view /*command*/, ReceiverModel& /*model*/) {}

void Misbehaviour::AfterAnswer(milliseconds /*now*/, std::vector<Sending>& /*sendings*/) {}

bool Misbehaviour::Strikes(double rate) {
  if (dice_.Fraction() >= rate) return false;
  ++strikes_;
  return true;
}

const std::vector<MisbehaviourName>& MisbehaviourNames() {
  static const std::vector<MisbehaviourName> kNames = {
      {"junk", "1 to 12 bytes of noise in front of an answer"},
      {"split", "an answer comes in two parts, 100 to 400 ms apart"},
      {"lost", "an answer never comes"},
      {"refuse", "the choice of a channel is refused"},
      {"silence", "no answer to anything for 5 seconds"},
      {"off", "the receiver loses its power"},
      {"corrupt", "one byte of an answer is wrong"},
      {"late", "an answer comes 1 to 3 seconds late"},
      {"setup", "the receiver asks to be set up again"},
      {"notice", "a message that nobody asked for"},
  };
  return kNames;
}

std::unique_ptr<Misbehaviour> MakeMisbehaviour(const MisbehaviourWish& wish, std::uint64_t seed) {
  const auto& [name, rate] = wish;
  if (name == "junk") return std::make_unique<Junk>(name, rate, seed);
  if (name == "split") return std::make_unique<Split>(name, rate, seed);
  if (name == "lost") return std::make_unique<Lost>(name, rate, seed);
  if (name == "refuse") return std::make_unique<Refuse>(name, rate, seed);
  if (name == "silence") return std::make_unique<Silence>(name, rate, seed);
  if (name == "off") return std::make_unique<PowerLoss>(name, rate, seed);
  if (name == "corrupt") return std::make_unique<Corrupt>(name, rate, seed);
  if (name == "late") return std::make_unique<Late>(name, rate, seed);
  if (name == "setup") return std::make_unique<Unasked>(name, rate, seed, std::string("\xF2\x01\x00", 3));
  if (name == "notice") return std::make_unique<Unasked>(name, rate, seed, std::string("\xE3\x01\x00", 3));
  return nullptr;
}

}  // namespace kestrune::receiver
