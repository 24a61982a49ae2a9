#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "platform/Mixer.h"

namespace kestrune::test {

/// A sound card made of plain fields, with the quirks of real ones.
class FakeMixer final : public platform::Mixer {
 public:
  struct Line {
    std::string Name;
    bool HasVolume = true;
    std::int32_t Volume = 65535;
    bool HasBalance = true;
    std::int16_t Balance = 50;
    bool CanSelect = true;
    bool Selected = false;
  };

  std::vector<Line> Lines;
  std::int32_t VolumeStep = 1;  ///< the card takes multiples of this
  bool OneSelected = false;     ///< always exactly one line is selected
  bool Changed = false;         ///< something was changed elsewhere
  std::string Device = "(closed)";
  std::int16_t Cursor = 0;
  bool UnplugAtWrite = false;  ///< the next write finds the card gone
  int TimesOpened = 0;

  void Open(const std::string& device) override {
    Device = device;
    ++TimesOpened;
  }
  void Close() override { Device = "(closed)"; }
  [[nodiscard]] bool Update() override { return std::exchange(Changed, false); }

  [[nodiscard]] std::int16_t LineCount() const override {
    return Device == "(closed)" ? std::int16_t{-1} : static_cast<std::int16_t>(Lines.size() - 1);
  }
  [[nodiscard]] std::int16_t CurrentLine() const override { return Cursor; }
  void SetCurrentLine(std::int16_t line) override { Cursor = line; }

  [[nodiscard]] std::string LineName() const override { return Here().Name; }
  [[nodiscard]] bool HasVolume() const override { return Here().HasVolume; }
  [[nodiscard]] std::int32_t Volume() const override { return Here().Volume; }
  void SetVolume(std::int32_t volume) override {
    if (!Gone()) Here().Volume = volume / VolumeStep * VolumeStep;
  }
  [[nodiscard]] bool HasBalance() const override { return Here().HasBalance; }
  [[nodiscard]] std::int16_t Balance() const override { return Here().Balance; }
  void SetBalance(std::int16_t balance) override {
    if (!Gone()) Here().Balance = static_cast<std::int16_t>(balance / 10 * 10);
  }
  [[nodiscard]] bool CanSelect() const override { return Here().CanSelect; }
  [[nodiscard]] bool Selected() const override { return Here().Selected; }
  void SetSelected(bool selected) override {
    if (Gone() || (OneSelected && !selected)) return;
    if (OneSelected)
      for (Line& line : Lines) line.Selected = false;
    Here().Selected = selected;
  }

 private:
  [[nodiscard]] bool Gone() {
    if (UnplugAtWrite) Lines.clear();
    UnplugAtWrite = false;
    return Lines.empty();
  }
  [[nodiscard]] Line& Here() { return Lines.at(static_cast<std::size_t>(Cursor)); }
  [[nodiscard]] const Line& Here() const { return Lines.at(static_cast<std::size_t>(Cursor)); }
};

}  // namespace kestrune::test
