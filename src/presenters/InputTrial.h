#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "base/EventLoop.h"
#include "base/Result.h"
#include "platform/CaptureFormat.h"
#include "platform/InputListener.h"
#include "presenters/LevelMeter.h"
#include "presenters/TestRecording.h"

namespace kestrune::presenters {

/// What is shown beside the choice of an input.
struct InputTrialControls {
  float Level = 0;        ///< of the last tenth of a second, 0 to 1, as LevelMeter has it
  std::string lblLevel;   ///< the level in words, or why there is none
  bool Doubtful = false;  ///< the words are a warning
  bool cmdTestEnabled = false;
  std::string lblTest;  ///< why there is no test recording, how far it is, or what became of it
  double TestPart = 0;  ///< of a test recording that runs, 0 to 1
};

/// The input that a user is about to choose: how loud it is at this moment, and how it sounds once it is recorded. It
/// listens beside the recorder, and where an input cannot be had twice, to what the recorder gets from it. It changes
/// nothing of a recording.
class InputTrial {
 public:
  struct Ports {
    base::EventLoop& Loop;
    platform::InputListener& Listener;
    /// The ids of the input that is open for captures now, and of the one for the next capture; empty if there is none.
    std::function<std::string()> Captured;
    std::function<std::string()> Configured;
    /// Whether something is being recorded that a user wants.
    std::function<bool()> Recording;
    /// The format that is chosen now, and its files' extension.
    std::function<platform::CaptureFormat()> Format;
    std::function<std::string()> Extension;
    TestRecording::Outside Test;
  };

  explicit InputTrial(Ports ports);
  ~InputTrial();
  InputTrial(const InputTrial&) = delete;
  InputTrial& operator=(const InputTrial&) = delete;

  /// The window opens: listens to the chosen input. It closes: no input is open any more, and the test recording is gone.
  void Load();
  void Unload();
  /// The input that is shown as chosen, by its id; empty if none is.
  void Choose(const std::string& id);
  /// All of the sound that is captured.
  void Hear(std::span<const std::int16_t> block, const platform::PcmFormat& format);

  [[nodiscard]] const InputTrialControls& Controls() const { return controls_; }
  /// Records five seconds; does nothing while that is not enabled.
  void cmdTest();

 private:
  enum class Way {
    None,      ///< no input is chosen
    Listener,  ///< with a source of its own
    Captured,  ///< what the recorder gets
    Later,     ///< the recorder is about to take it, and it cannot be had twice
  };

  void Look();
  [[nodiscard]] Way WayTo(const std::string& id) const;
  void Follow();
  void TakeSound();
  void LookAfterTest(bool heard);
  void ShowLevel();
  void ShowTest();

  Ports ports_;
  TestRecording test_;
  LevelMeter meter_;
  InputTrialControls controls_;
  bool loaded_ = false;
  std::string id_;
  // What is listened to, and how.
  Way way_ = Way::None;
  std::string heardId_;
  platform::PcmFormat format_;
  base::Result opened_ = base::Result::Done();
  std::vector<std::int16_t> heard_;  // of the recorder, since the last look
  platform::PcmFormat heardFormat_;
  // In looks.
  int sinceSound_ = 0;
  int sinceLoud_ = 0;
  int sinceClipped_ = 0;
  std::unique_ptr<base::Timer> tmrLook_;
};

}  // namespace kestrune::presenters
