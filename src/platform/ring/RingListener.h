#pragma once

#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "platform/InputListener.h"
#include "platform/SoundSource.h"
#include "platform/ring/SampleRing.h"

namespace kestrune::platform {

/// Listens through a source of its own, which it has only while it listens.
class RingListener final : public InputListener, private SampleSink {
 public:
  static constexpr int kRingSeconds = 30;

  /// `shares` says whether two sources can have one device open.
  RingListener(std::function<std::unique_ptr<SoundSource>()> makeSource, bool shares)
      : makeSource_(std::move(makeSource)), shares_(shares) {}
  ~RingListener() override { Close(); }
  RingListener(const RingListener&) = delete;
  RingListener& operator=(const RingListener&) = delete;

  [[nodiscard]] bool Shares() const override { return shares_; }
  base::Result Open(const std::string& id, const PcmFormat& format) override;
  void Close() override;
  [[nodiscard]] std::vector<std::int16_t> Take() override;

 private:
  void OnSamples(std::span<const std::int16_t> interleaved) override { ring_->Push(interleaved); }
  void OnLost(std::int64_t /*frames*/) override {}

  std::function<std::unique_ptr<SoundSource>()> makeSource_;
  bool shares_;
  // Replaced only while there is no source, when no other thread uses it.
  std::unique_ptr<SampleRing> ring_;
  std::unique_ptr<SoundSource> source_;
};

}  // namespace kestrune::platform
