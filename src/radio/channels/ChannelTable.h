#pragma once

#include <cstdint>
#include <vector>

#include "radio/channels/ChannelEntry.h"

namespace kestrune::radio {

/// The channels in slots 1 to 1000, filled without gaps. Slot 0 is always empty and stands for every channel
/// that the table does not have.
class ChannelTable {
 public:
  static constexpr std::int16_t kLastSlot = 1000;

  ChannelTable();

  [[nodiscard]] std::int16_t ChannelCount() const { return channelCount_; }

  /// Slot of a channel, 0 if it has none. A channel that was removed keeps its former slot, which may hold
  /// another channel by now or none.
  [[nodiscard]] std::int16_t ChannelIndex(int number) const;

  /// The entry of a slot; the empty one for a number that is not a slot.
  [[nodiscard]] const ChannelEntry& At(int slot) const;
  /// The entry of a slot to write into; null for slot 0 and for a number that is not a slot.
  [[nodiscard]] ChannelEntry* Find(int slot);

  /// Fills the next slot. False, without a change, if all are taken.
  bool Add(ChannelEntry entry);
  /// Takes a filled slot out and moves all later ones down by one.
  void Remove(int slot);
  void Clear();

 private:
  void SetIndex(int number, std::int16_t slot);

  std::vector<ChannelEntry> channelTable_;
  std::vector<std::int16_t> channelIndex_;
  std::int16_t channelCount_ = 0;
};

}  // namespace kestrune::radio
