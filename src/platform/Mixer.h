#pragma once

#include <cstdint>
#include <string>

namespace kestrune::platform {

/// The recording lines of a sound device: a cursor over them. To be called on the main thread.
///
/// 1. What is read is what the device has, not what was written: a device may round a volume, and may deselect
///    other lines when one is selected.
/// 2. Reading never waits; Open and the writes wait a second at most.
/// 3. If the current line does not exist, what is read is empty and a write does nothing.
class Mixer {
 public:
  static constexpr std::int32_t kMaxVolume = 65535;
  static constexpr std::int16_t kMaxBalance = 100;
  static constexpr std::int16_t kMiddle = 50;  ///< of the balance; 0 is left

  virtual ~Mixer() = default;

  /// Opens the mixer of a recording device, by its AudioRecorder::DeviceId; empty means the default one.
  virtual void Open(const std::string& device) = 0;
  virtual void Close() = 0;
  /// Takes in changes made elsewhere and devices that came or went. True if what is read may have changed, the number
  /// of lines included. To be called several times a second while open.
  [[nodiscard]] virtual bool Update() = 0;

  /// The highest index of a line; -1 if there is none.
  [[nodiscard]] virtual std::int16_t LineCount() const = 0;
  [[nodiscard]] virtual std::int16_t CurrentLine() const = 0;
  /// Chooses the line that the calls below act on.
  virtual void SetCurrentLine(std::int16_t line) = 0;

  [[nodiscard]] virtual std::string LineName() const = 0;
  [[nodiscard]] virtual bool HasVolume() const = 0;
  [[nodiscard]] virtual std::int32_t Volume() const = 0;
  virtual void SetVolume(std::int32_t volume) = 0;
  [[nodiscard]] virtual bool HasBalance() const = 0;
  [[nodiscard]] virtual std::int16_t Balance() const = 0;
  virtual void SetBalance(std::int16_t balance) = 0;
  /// The line can be chosen as a recording source.
  [[nodiscard]] virtual bool CanSelect() const = 0;
  [[nodiscard]] virtual bool Selected() const = 0;
  virtual void SetSelected(bool selected) = 0;
};

}  // namespace kestrune::platform
