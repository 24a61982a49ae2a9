#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "platform/Mixer.h"

namespace kestrune::platform {

/// One recording line as last read.
struct MixerLine {
  std::string Name;
  bool HasVolume = false;
  std::int32_t Volume = 0;
  bool HasBalance = false;
  std::int16_t Balance = Mixer::kMiddle;
  bool CanSelect = false;
  bool Selected = false;
};

/// The cursor over lines that an adapter has read. After each write the adapter reads the lines again and sets them.
class LineMixer : public Mixer {
 public:
  [[nodiscard]] std::int16_t LineCount() const final;
  [[nodiscard]] std::int16_t CurrentLine() const final { return currentLine_; }
  void SetCurrentLine(std::int16_t line) final { currentLine_ = line; }

  [[nodiscard]] std::string LineName() const final { return Current().Name; }
  [[nodiscard]] bool HasVolume() const final { return Current().HasVolume; }
  [[nodiscard]] std::int32_t Volume() const final { return Current().Volume; }
  void SetVolume(std::int32_t volume) final;
  [[nodiscard]] bool HasBalance() const final { return Current().HasBalance; }
  [[nodiscard]] std::int16_t Balance() const final { return Current().Balance; }
  void SetBalance(std::int16_t balance) final;
  [[nodiscard]] bool CanSelect() const final { return Current().CanSelect; }
  [[nodiscard]] bool Selected() const final { return Current().Selected; }
  void SetSelected(bool selected) final;

 protected:
  void SetLines(std::vector<MixerLine> lines) { lines_ = std::move(lines); }

  // Called only for lines that have the property, with values in range.
  virtual void WriteVolume(std::size_t line, std::int32_t volume) = 0;
  virtual void WriteBalance(std::size_t line, std::int16_t balance) = 0;
  virtual void WriteSelected(std::size_t line, bool selected) = 0;

 private:
  [[nodiscard]] const MixerLine& Current() const;

  std::vector<MixerLine> lines_;
  std::int16_t currentLine_ = 0;
};

}  // namespace kestrune::platform
