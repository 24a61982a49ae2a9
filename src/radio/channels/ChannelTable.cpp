#include "radio/channels/ChannelTable.h"

#include <cstddef>
#include <utility>

namespace kestrune::radio {

namespace {

bool InRange(int position) {
  return position >= 0 && position <= ChannelTable::kLastSlot;
}

}  // namespace

ChannelTable::ChannelTable()
    : channelTable_(std::size_t{kLastSlot} + 1), channelIndex_(std::size_t{kLastSlot} + 1) {}

std::int16_t ChannelTable::ChannelIndex(int number) const {
  return InRange(number) ? channelIndex_[static_cast<std::size_t>(number)] : std::int16_t{0};
}

const ChannelEntry& ChannelTable::At(int slot) const {
  return channelTable_[InRange(slot) ? static_cast<std::size_t>(slot) : 0];
}

ChannelEntry* ChannelTable::Find(int slot) {
  return slot != 0 && InRange(slot) ? &channelTable_[static_cast<std::size_t>(slot)] : nullptr;
}

bool ChannelTable::Add(ChannelEntry entry) {
  if (channelCount_ == kLastSlot) return false;
  ++channelCount_;
  SetIndex(entry.Number, channelCount_);
  channelTable_[static_cast<std::size_t>(channelCount_)] = std::move(entry);
  return true;
}

void ChannelTable::Remove(int slot) {
  if (slot < 1 || slot > channelCount_) return;
  for (auto to = static_cast<std::int16_t>(slot); to < channelCount_; ++to) {
    ChannelEntry& entry = channelTable_[static_cast<std::size_t>(to)];
    entry = std::move(channelTable_[static_cast<std::size_t>(to) + 1]);
    SetIndex(entry.Number, to);
  }
  channelTable_[static_cast<std::size_t>(channelCount_)] = {};
  --channelCount_;
}

void ChannelTable::Clear() {
  for (; channelCount_ > 0; --channelCount_) {
    ChannelEntry& entry = channelTable_[static_cast<std::size_t>(channelCount_)];
    SetIndex(entry.Number, 0);
    entry = {};
  }
}

void ChannelTable::SetIndex(int number, std::int16_t slot) {
  if (InRange(number)) channelIndex_[static_cast<std::size_t>(number)] = slot;
}

}  // namespace kestrune::radio
