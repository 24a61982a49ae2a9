#include "receiver/Misbehaviour.h"

#include <utility>

namespace kestrune::receiver {
namespace {

using std::chrono::milliseconds;

constexpr std::uint8_t kSelectType = 0x10;

class Junk final : public Misbehaviour {
 public:
  using Misbehaviour::Misbehaviour;
  void AfterAnswer(milliseconds now, std::vector<Sending>& sendings) override {
    if (!StrikesNow(now)) return;
    std::string bytes(static_cast<std::size_t>(Chance().Between(1, 12)), '\0');
    for (char& byte : bytes) byte = static_cast<char>(Chance().Between(0, 255));
    sendings.insert(sendings.begin(), {std::move(bytes), milliseconds(0)});
  }
};

class Split final : public Misbehaviour {
 public:
  using Misbehaviour::Misbehaviour;
  void AfterAnswer(milliseconds now, std::vector<Sending>& sendings) override {
    if (sendings.empty() || sendings.back().Bytes.size() < 2 || !StrikesNow(now)) return;
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
  void AfterAnswer(milliseconds now, std::vector<Sending>& sendings) override {
    if (!sendings.empty() && StrikesNow(now)) sendings.clear();
  }
};

class Refuse final : public Misbehaviour {
 public:
  using Misbehaviour::Misbehaviour;
  bool BeforeAnswer(milliseconds now, std::string_view command, ReceiverModel& model) override {
    const bool select = !command.empty() && static_cast<std::uint8_t>(command[0]) == kSelectType;
    if (select && StrikesNow(now)) model.RefuseNextSelect();
    return true;
  }
};

class Silence final : public Misbehaviour {
 public:
  using Misbehaviour::Misbehaviour;
  void AfterAnswer(milliseconds now, std::vector<Sending>& sendings) override {
    if (now >= until_ && StrikesNow(now)) until_ = now + kLength;
    if (now < until_) sendings.clear();
  }

 private:
  static constexpr milliseconds kLength{5000};
  milliseconds until_{0};
};

class PowerLoss final : public Misbehaviour {
 public:
  using Misbehaviour::Misbehaviour;
  bool BeforeAnswer(milliseconds now, std::string_view /*command*/, ReceiverModel& model) override {
    if (model.PoweredOn() && StrikesNow(now)) model.SetPower(false);
    return true;
  }
};

/// The power supply fails for a while. The receiver comes back switched on, on another channel and not muted.
class Restart final : public Misbehaviour {
 public:
  using Misbehaviour::Misbehaviour;
  bool BeforeAnswer(milliseconds now, std::string_view /*command*/, ReceiverModel& model) override {
    if (!dead_ && StrikesNow(now)) {
      dead_ = true;
      until_ = now + kLength;
      model.SetPower(false);
    }
    if (dead_ && now >= until_) {
      dead_ = false;
      model.SetPower(true);
      model.SetMuted(false);
      Wander(model);
    }
    return !dead_;
  }

  /// Tunes to the next station, after the last one to the first.
  static void Wander(ReceiverModel& model) {
    const LineUp& stations = model.Stations();
    const Station* next = stations.After(model.TunedChannel());
    if (next == nullptr) next = stations.After(0);
    if (next != nullptr) model.SetTunedChannel(next->Number);
  }

 private:
  static constexpr milliseconds kLength{3000};
  milliseconds until_{0};
  bool dead_ = false;
};

/// The power is out for longer, and the receiver comes back switched off, on its first channel and not muted.
class Blackout final : public Misbehaviour {
 public:
  using Misbehaviour::Misbehaviour;
  bool BeforeAnswer(milliseconds now, std::string_view /*command*/, ReceiverModel& model) override {
    if (now >= until_ && StrikesNow(now)) {
      until_ = now + kLength;
      model.SetPower(false);
      model.SetMuted(false);
      if (const Station* const first = model.Stations().After(0)) model.SetTunedChannel(first->Number);
    }
    return now >= until_;
  }

 private:
  static constexpr milliseconds kLength{20000};
  milliseconds until_{0};
};

/// A header with a great length precedes the answer, and what it promises never comes.
class Stray final : public Misbehaviour {
 public:
  using Misbehaviour::Misbehaviour;
  void AfterAnswer(milliseconds now, std::vector<Sending>& sendings) override {
    if (StrikesNow(now)) sendings.insert(sendings.begin(), {"\x5A\xA5\x7F\xFF", milliseconds(0)});
  }
};

class Wander final : public Misbehaviour {
 public:
  using Misbehaviour::Misbehaviour;
  bool BeforeAnswer(milliseconds now, std::string_view /*command*/, ReceiverModel& model) override {
    if (StrikesNow(now)) Restart::Wander(model);
    return true;
  }
};

class Deaf final : public Misbehaviour {
 public:
  using Misbehaviour::Misbehaviour;
  bool BeforeAnswer(milliseconds now, std::string_view /*command*/, ReceiverModel& /*model*/) override {
    return !StrikesNow(now);
  }
};

class Corrupt final : public Misbehaviour {
 public:
  using Misbehaviour::Misbehaviour;
  void AfterAnswer(milliseconds now, std::vector<Sending>& sendings) override {
    if (sendings.empty() || sendings.back().Bytes.empty() || !StrikesNow(now)) return;
    std::string& bytes = sendings.back().Bytes;
    const auto place = static_cast<std::size_t>(Chance().Between(0, static_cast<int>(bytes.size()) - 1));
    bytes[place] = static_cast<char>(static_cast<std::uint8_t>(bytes[place]) ^ Chance().Between(1, 255));
  }
};

class Late final : public Misbehaviour {
 public:
  using Misbehaviour::Misbehaviour;
  void AfterAnswer(milliseconds now, std::vector<Sending>& sendings) override {
    if (sendings.empty() || !StrikesNow(now)) return;
    sendings.front().Delay += milliseconds(Chance().Between(1000, 3000));
  }
};

/// A frame that nobody asked for, after the answer.
class Unasked final : public Misbehaviour {
 public:
  Unasked(MisbehaviourWish wish, std::uint64_t seed, std::string payload)
      : Misbehaviour(std::move(wish), seed), payload_(std::move(payload)) {}
  void AfterAnswer(milliseconds now, std::vector<Sending>& sendings) override {
    if (StrikesNow(now)) sendings.push_back({FrameOf(payload_), milliseconds(0)});
  }

 private:
  std::string payload_;
};

}  // namespace

// The seed is mixed with the name, so that a misbehaviour strikes at the same commands with and without the others.
Misbehaviour::Misbehaviour(MisbehaviourWish wish, std::uint64_t seed)
    : wish_(std::move(wish)), dice_(seed ^ HashOf(wish_.Name)) {}

bool Misbehaviour::BeforeAnswer(milliseconds /*now*/, std::string_view /*command*/,
                                ReceiverModel& /*model*/) {
  return true;
}

void Misbehaviour::AfterAnswer(milliseconds /*now*/, std::vector<Sending>& /*sendings*/) {}

bool Misbehaviour::StrikesNow(milliseconds now) {
  const bool strikes = wish_.At ? strikes_ == 0 && now >= *wish_.At : dice_.Fraction() < wish_.Rate;
  if (strikes) ++strikes_;
  return strikes;
}

const std::vector<MisbehaviourName>& MisbehaviourNames() {
  static const std::vector<MisbehaviourName> kNames = {
      {"junk", "1 to 12 bytes of noise precede an answer"},
      {"stray", "a header with a great length precedes an answer"},
      {"split", "an answer comes in two parts, 100 to 400 ms apart"},
      {"lost", "a command is obeyed, but its answer never comes"},
      {"deaf", "a command is dropped: neither obeyed nor answered"},
      {"refuse", "the choice of a channel is refused"},
      {"silence", "no answer to anything for 5 seconds"},
      {"off", "the receiver is switched off and refuses all commands"},
      {"restart", "the receiver loses its power for 3 seconds and comes back on another channel"},
      {"blackout", "the receiver has no power for 20 seconds and comes back off, on its first channel"},
      {"wander", "the receiver changes to another channel"},
      {"corrupt", "one byte of an answer is wrong"},
      {"late", "an answer comes 1 to 3 seconds late"},
      {"setup", "the receiver asks to be set up again"},
      {"notice", "a message that nobody asked for"},
  };
  return kNames;
}

std::unique_ptr<Misbehaviour> MakeMisbehaviour(const MisbehaviourWish& wish, std::uint64_t seed) {
  const std::string& name = wish.Name;
  if (name == "junk") return std::make_unique<Junk>(wish, seed);
  if (name == "stray") return std::make_unique<Stray>(wish, seed);
  if (name == "split") return std::make_unique<Split>(wish, seed);
  if (name == "lost") return std::make_unique<Lost>(wish, seed);
  if (name == "deaf") return std::make_unique<Deaf>(wish, seed);
  if (name == "refuse") return std::make_unique<Refuse>(wish, seed);
  if (name == "silence") return std::make_unique<Silence>(wish, seed);
  if (name == "off") return std::make_unique<PowerLoss>(wish, seed);
  if (name == "restart") return std::make_unique<Restart>(wish, seed);
  if (name == "blackout") return std::make_unique<Blackout>(wish, seed);
  if (name == "wander") return std::make_unique<Wander>(wish, seed);
  if (name == "corrupt") return std::make_unique<Corrupt>(wish, seed);
  if (name == "late") return std::make_unique<Late>(wish, seed);
  if (name == "setup") return std::make_unique<Unasked>(wish, seed, std::string("\xF2\x01\x00", 3));
  if (name == "notice") return std::make_unique<Unasked>(wish, seed, std::string("\xE3\x01\x00", 3));
  return nullptr;
}

}  // namespace kestrune::receiver
