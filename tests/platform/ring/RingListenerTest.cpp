#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/ring/RingListener.h"
#include "support/SimulatedEventLoop.h"
#include "support/SimulatedSoundSource.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;
using platform::PcmFormat;
using platform::RingListener;
using ::testing::IsEmpty;

class RingListenerTest : public ::testing::Test {
 protected:
  SimulatedEventLoop loop_;
  int made_ = 0;
  SimulatedSoundSource* source_ = nullptr;
  std::string error_;
  RingListener listener_{[this] {
                           auto source = std::make_unique<SimulatedSoundSource>(loop_);
                           if (!error_.empty()) source->FailOpening(error_);
                           source_ = source.get();
                           ++made_;
                           return source;
                         },
                         true};
};

TEST_F(RingListenerTest, ItHasNoSourceUntilItListens) {
  loop_.Run(1s);
  EXPECT_EQ(made_, 0);
  EXPECT_THAT(listener_.Take(), IsEmpty());
  listener_.Close();
  EXPECT_EQ(made_, 0);
}

TEST_F(RingListenerTest, WhatComesIsTakenOnceAndInItsOrder) {
  ASSERT_TRUE(listener_.Open("radio", PcmFormat{8000, 2}));
  loop_.Run(100ms);
  std::vector<std::int16_t> first = listener_.Take();
  EXPECT_EQ(first.size(), 1600U);
  EXPECT_THAT(listener_.Take(), IsEmpty());
  loop_.Run(50ms);
  const std::vector<std::int16_t> second = listener_.Take();
  first.insert(first.end(), second.begin(), second.end());
  const std::vector<std::uint32_t> frames = SimulatedSoundSource::FrameNumbers(first);
  ASSERT_EQ(frames.size(), 1200U);
  for (std::size_t i = 1; i < frames.size(); ++i) ASSERT_EQ(frames[i], frames[i - 1] + 1);
}

TEST_F(RingListenerTest, AnotherDeviceGetsASourceOfItsOwnAndNothingOfTheOldOne) {
  ASSERT_TRUE(listener_.Open("radio", PcmFormat{8000, 2}));
  loop_.Run(1s);
  ASSERT_TRUE(listener_.Open("radio", PcmFormat{16000, 1}));
  EXPECT_EQ(made_, 2);
  EXPECT_EQ(source_->OpenFormat(), (PcmFormat{16000, 1}));
  EXPECT_THAT(listener_.Take(), IsEmpty());
  loop_.Run(1s);
  listener_.Close();
  EXPECT_THAT(listener_.Take(), IsEmpty()) << "nothing is open";
}

TEST_F(RingListenerTest, ADeviceThatDoesNotOpenSaysWhyAndIsTriedAgain) {
  error_ = "it is in use";
  EXPECT_EQ(listener_.Open("radio", PcmFormat{8000, 2}).Cause(), "it is in use");
  source_->FailOpening("");
  loop_.Run(3s);
  EXPECT_FALSE(listener_.Take().empty());
}

TEST_F(RingListenerTest, MoreThanHalfAMinuteIsNotKept) {
  ASSERT_TRUE(listener_.Open("radio", PcmFormat{8000, 1}));
  loop_.Run(40s);
  EXPECT_EQ(listener_.Take().size(), 30U * 8000U);
}

}  // namespace
}  // namespace kestrune::test
