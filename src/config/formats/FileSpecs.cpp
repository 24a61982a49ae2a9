#include "config/formats/FileSpecs.h"

#include <cmath>
#include <utility>

#include "base/Numbers.h"

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
  platform::CaptureFile& file = *slotFile;
  const std::string& format = settings_.FileFormat;
  if (format == "G726") {
    file.SetFormatG726(settings_.Format726.Frequency, settings_.Format726.Bits);
  } else if (format == "MP3") {
    FillMp3Parameters(scheduled);
    file.SetFormatMP3(mp3Parameters_);
  } else if (format == "OGG") {
    PrepareOgg(file);
  } else if (format == "RAW") {
    const FormatRAW& raw = settings_.FormatRAW;
    file.SetFormatRAW(raw.Compression, raw.Frequency, raw.Channels, 16);
  } else if (format == "VOX") {
    file.SetFormatVOX(settings_.FormatVOX.Frequency);
  } else if (format == "WAV") {
    const FormatWAV& wav = settings_.FormatWAV;
    file.SetFormatWAV(wav.Frequency, wav.Channels, wav.Bits);
  }
  fileFormatText_ = file.FormatDescription();
}

void FileSpecs::FillMp3Parameters(const std::optional<std::string>& scheduled) {
  constexpr std::int16_t kNoFilter = -1;
  const FormatMP3& mp3 = settings_.FormatMP3;
  mp3Parameters_.VBRTargetBitrate = mp3.VBRTargetBitrate;
  mp3Parameters_.ATHControl = mp3.ATHControl;
  mp3Parameters_.Bitrate = mp3.Bitrate;
  mp3Parameters_.BitReservoir = mp3.BitReservoir;
  mp3Parameters_.DifferentBlockTypes = mp3.DifferentBlockTypes;
  mp3Parameters_.Channels = mp3.Channels;
  mp3Parameters_.DeEmphasis = mp3.DeEmphasis;
  mp3Parameters_.Quality = mp3.Quality;
  mp3Parameters_.IncludeCRC = mp3.IncludeCRC;
  mp3Parameters_.Frequency = mp3.Frequency;
  mp3Parameters_.HighPassFilterFreq = mp3.HighPassFilter ? mp3.HighPassFilterFreq : kNoFilter;
  mp3Parameters_.HighPassFilterWidth = mp3.HighPassFilterWidth;
  mp3Parameters_.LowPassFilterFreq = mp3.LowPassFilter ? mp3.LowPassFilterFreq : kNoFilter;
  mp3Parameters_.LowPassFilterWidth = mp3.LowPassFilterWidth;
  mp3Parameters_.ShortBlocks = mp3.ShortBlocks;
  mp3Parameters_.ComplyISO = mp3.ComplyISO;
  mp3Parameters_.VBREnforceMinBitRate = mp3.VBREnforceMinBitRate;
  mp3Parameters_.TypeStereo = mp3.TypeStereo;
  mp3Parameters_.VBRMaxBitrate = mp3.VBRMaxBitrate;
  mp3Parameters_.VBRCodingMethod = mp3.VBRCodingMethod;
  mp3Parameters_.VBRQuality = mp3.VBRQuality;
  mp3Parameters_.VBRHeader = mp3.VBRHeader;

  if (scheduled) {
    mp3Parameters_.Bitrate = base::ToInt16(std::trunc(base::LeadingNumber(*scheduled))).value_or(0);
    mp3Parameters_.Channels = scheduled->find("Mono") != std::string::npos ? 1 : 2;
  }
}

void FileSpecs::PrepareOgg(platform::CaptureFile& file) const {
  // Always stereo at the stored bitrate: a schedule's bit rate text is for MP3 alone.
  constexpr std::int32_t kFrequency = 44100;
  constexpr std::int16_t kChannels = 2;
  const FormatOGG& ogg = settings_.FormatOGG;
  if (ogg.QualityEnabled) {
    file.SetFormatOgg(kFrequency, kChannels, 128, 0, 0, ogg.Quality);
  } else if (ogg.VbrEnabled) {
    file.SetFormatOgg(kFrequency, kChannels, ogg.Bitrate, ogg.MinBitrate, ogg.MaxBitrate, -1);
  } else {
    file.SetFormatOgg(kFrequency, kChannels, ogg.Bitrate, 0, 0, -1);
  }
}

}  // namespace kestrune::config
