#include "config/formats/FileSpecs.h"

#include <utility>
#include <variant>

#include "config/formats/FormatTable.h"

namespace kestrune::config {

FileSpecs::FileSpecs(SlotFile slotFile, const FormatSettings& settings, const std::int16_t& captureSlot,
                     ScheduledBitRate scheduledBitRate)
    : slotFile_(std::move(slotFile)),
      settings_(settings),
      captureSlot_(captureSlot),
      scheduledBitRate_(std::move(scheduledBitRate)) {}

platform::CaptureFormat FileSpecs::Format() const {
  const FormatRow* const row = FindFormat(settings_.FileFormat);
  return row != nullptr ? row->Format(settings_, scheduledBitRate_()) : platform::CaptureFormat();
}

void FileSpecs::SetFileSpecs(std::int16_t slot) {
  if (slot == -1) slot = static_cast<std::int16_t>(1 - captureSlot_);
  if (slot != 0 && slot != 1) return;

  platform::CaptureFile* const slotFile = slotFile_(slot);
  if (slotFile == nullptr) return;
  const platform::CaptureFormat format = Format();
  if (!std::holds_alternative<std::monostate>(format)) slotFile->SetFormat(format);
  fileFormatText_ = slotFile->FormatDescription();
}

}  // namespace kestrune::config
