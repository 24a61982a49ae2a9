#include <gtest/gtest.h>

#include "platform/ring/RingRecorder.h"
#include "recorder/InputDevices.h"
#include "support/SimulatedEventLoop.h"
#include "support/SimulatedSoundSource.h"

namespace kestrune::recorder {
namespace {

/// Devices that are usable or not as listed; any index past the list is unusable.
class ListedRecorder final : public platform::AudioRecorder {
 public:
  struct Device {
    std::string Name;
    bool Usable = true;
    std::string Id = {};
  };
  explicit ListedRecorder(std::vector<Device> devices) : devices_(std::move(devices)) {}
  [[nodiscard]] std::int16_t DeviceCount() override { return static_cast<std::int16_t>(devices_.size()); }
  void SetDeviceIndex(std::int16_t index) override {
    index_ = static_cast<std::size_t>(index);
    Asked.push_back(index);
  }
  [[nodiscard]] bool DeviceUsable() override { return index_ < devices_.size() && devices_[index_].Usable; }
  [[nodiscard]] std::string DeviceName() override { return devices_.at(index_).Name; }
  [[nodiscard]] std::string DeviceId() override { return devices_.at(index_).Id; }
  void SetAgcEnabled(bool /*enabled*/) override {}
  void SetAgcAttackTime(std::int16_t /*milliseconds*/) override {}
  void SetAgcHighLevel(std::int16_t /*decibels*/) override {}
  void SetAgcLowLevel(std::int16_t /*decibels*/) override {}
  void SetFormat(const platform::PcmFormat& /*format*/) override {}
  [[nodiscard]] std::int32_t TimeToBytes(std::int32_t /*milliseconds*/) const override { return 0; }
  void SetBlockSize(std::int32_t /*bytes*/) override {}
  void Prepare() override {}
  platform::NumberedResult StartRecording() override { return {}; }
  void Stop() override {}
  [[nodiscard]] std::span<const std::int16_t> GetBlock() const override { return {}; }
  [[nodiscard]] std::vector<std::int16_t> GetDisplaySamples(std::int32_t /*count*/) const override {
    return {};
  }
  void SetBlockHandler(std::function<void()> /*handler*/) override {}
  void SetTimerHandler(std::function<void()> /*handler*/) override {}
  [[nodiscard]] std::string OpenDeviceId() const override { return {}; }
  [[nodiscard]] std::string OpenError() const override { return {}; }
  [[nodiscard]] const platform::CaptureSound& Sound() const override { return CapturedSound; }
  [[nodiscard]] std::int64_t FramesCaptured() const override { return 0; }
  [[nodiscard]] std::int64_t FramesLost() const override { return 0; }
  [[nodiscard]] std::int64_t FramesWaiting() const override { return 0; }

  std::vector<std::int16_t> Asked;
  platform::CaptureSound CapturedSound;

 private:
  std::vector<Device> devices_;
  std::size_t index_ = 0;
};

TEST(InputDevices, TheOnePastTheLastIsAskedForTooAndTakesOneOff) {
  ListedRecorder recorder({{"Line", true}, {"Mic", true}, {"Aux", true}});
  const InputDevices found = EnumerateInputDevices(recorder, {.Index = 1, .Id = ""});
  EXPECT_EQ(recorder.Asked, (std::vector<std::int16_t>{0, 1, 2, 3}));
  EXPECT_EQ(found.Available, 2);
  EXPECT_EQ(found.DeviceList, "Line#0%Mic#1%Aux#2%");
  EXPECT_EQ(found.Configured, "Mic");
}

TEST(InputDevices, AnUnusableDeviceKeepsItsIndexFree) {
  ListedRecorder recorder({{"Line", true}, {"Mic", false}, {"Aux", true}});
  const InputDevices found = EnumerateInputDevices(recorder, {.Index = 1, .Id = ""});
  EXPECT_EQ(found.Available, 1);
  EXPECT_EQ(found.DeviceList, "Line#0%Aux#2%");
  EXPECT_EQ(found.Configured, "");
}

TEST(InputDevices, ASoundMapperCountsAsAvailableButIsNeverListed) {
  ListedRecorder recorder({{"Wave SOUND mapper", true}, {"Line", true}});
  const InputDevices found = EnumerateInputDevices(recorder, {.Index = 0, .Id = ""});
  EXPECT_EQ(found.Available, 1);
  EXPECT_EQ(found.DeviceList, "Line#1%");
  EXPECT_EQ(found.Configured, "Wave SOUND mapper");
}

TEST(InputDevices, AWantedIdIsFoundAtAnotherIndex) {
  ListedRecorder recorder({{"New", true, "new"}, {"Line", true, "line"}, {"Mic", true, "mic"}});
  const InputDevices found = EnumerateInputDevices(recorder, {.Index = 0, .Id = "line"});
  EXPECT_EQ(found.Index, 1);
  EXPECT_EQ(found.Configured, "Line");
  EXPECT_EQ(found.IdOf(2), "mic");
  EXPECT_EQ(found.IdOf(3), "");
}

TEST(InputDevices, AWantedIdThatIsNotThereLeavesTheIndex) {
  ListedRecorder recorder({{"Line", true, "line"}, {"Mic", false, "mic"}, {"Aux", true, ""}});
  for (const char* id : {"gone", "mic", ""}) {
    const InputDevices found = EnumerateInputDevices(recorder, {.Index = 0, .Id = id});
    EXPECT_EQ(found.Index, 0) << id;
    EXPECT_EQ(found.Configured, "Line") << id;
  }
}

TEST(InputDevices, TheMapperIsItselfAndNotTheDeviceThatItStandsFor) {
  ListedRecorder recorder({{"Mic", true, "mic"}, {"Line", true, "line"}, {"Sound Mapper", true, "mic"}});
  EXPECT_EQ(EnumerateInputDevices(recorder, {.Index = 1, .Id = "mic"}).Index, 0);
  const InputDevices found = EnumerateInputDevices(recorder, {.Index = 1, .Id = "Sound Mapper"});
  EXPECT_EQ(found.Index, 2);
  EXPECT_EQ(found.IdOf(2), "Sound Mapper");
}

TEST(InputDevices, NamesWithTheMarksOfTheListTextStayWhole) {
  ListedRecorder recorder({{"Line #1%", true, "a"}, {"50%#0%", true, "b"}});
  const InputDevices found = EnumerateInputDevices(recorder, {.Index = 1, .Id = ""});
  EXPECT_EQ(found.DeviceList, "Line #1%#0%50%#0%#1%");
  EXPECT_EQ(found.Listed, (std::vector<InputDevice>{{.Name = "Line #1%", .Index = 0, .Id = "a"},
                                                    {.Name = "50%#0%", .Index = 1, .Id = "b"}}));
}

TEST(InputDevices, TheExplanationListsWhatThereIs) {
  ListedRecorder recorder({{"Line", true}, {"Mic", true}});
  EXPECT_EQ(
      EnumerateInputDevices(recorder, {.Index = 0, .Id = ""}).Explanation,
      "\n\nThe following sound cards are capable, but unavailable:\n\nLine\nMic\n\nConfigured to use: Line");
}

TEST(InputDevices, WithoutAnyDeviceNothingIsAvailable) {
  ListedRecorder recorder({});
  const InputDevices found = EnumerateInputDevices(recorder, {.Index = 0, .Id = ""});
  EXPECT_LT(found.Available, 1);
  EXPECT_EQ(found.Explanation,
            "\n\nThe following sound cards are capable, but unavailable:\n\nConfigured to use: ");
}

TEST(InputDevices, AMachineWithASingleInputCanRecord) {
  test::SimulatedEventLoop loop;
  test::SimulatedSoundSource source(loop);
  platform::RingRecorder recorder(loop, source);
  const InputDevices found = EnumerateInputDevices(recorder, {.Index = 0, .Id = ""});
  EXPECT_GE(found.Available, 1);
  EXPECT_NE(found.Configured, "");
}

}  // namespace
}  // namespace kestrune::recorder
