#include "config/formats/FileSpecs.h"

#include <utility>

#include "config/formats/FormatTable.h"

namespace kestrune::config {

FileSpecs::FileSpecs(SlotFile slotFile, const FormatSettings& settings, const std::int16_t& captureSlot,
                     ScheduledBitRate scheduledBitRate)
    : slotFile_(std::move(slotFile)),
      settings_(settings),
      captureSlot_(captureSlot),
      scheduledBitRate_(std::move(scheduledBitRate)) {}

void FileSpecs::SetFileSpecs(std::int16_t slot) {
  const std::optional<std::string> scheduled = scheduledBitRate_();
  if (slot == -1) slot = static_cast<std::int16_t>(1 - captureSlot_);
  if (slot != 0 && slot != 1) return;

  platform::CaptureFile* const slotFile = slotFile_(slot);
  if (slotFile == nullptr) return;
  const FormatRow* const row = FindFormat(settings_.FileFormat);
  if (row != nullptr) slotFile->SetFormat(row->Format(settings_, scheduled));
  fileFormatText_ = slotFile->FormatDescription();
}

}  // namespace kestrune::config
