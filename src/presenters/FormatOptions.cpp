#include "presenters/FormatOptions.h"

#include <algorithm>
#include <iterator>

namespace kestrune::presenters {
namespace {

constexpr std::string_view kRateFrame = "Sample Rate (Hz)";
constexpr std::string_view kRateTip = "Select sample rate";
constexpr std::string_view kChannelsTip = "Select number of channels to record";
constexpr std::string_view kBitsTip = "Select sample bit size";

/// A group that reads and writes one field of a format record.
template <auto Record, auto Field>
constexpr OptionGroup Group(std::string_view name, std::string_view frame,
                            std::span<const OptionButton> buttons) {
  return {name, frame, buttons,
          [](const config::Settings& settings) { return static_cast<std::int32_t>(settings.*Record.*Field); },
          [](config::Settings& settings, std::int32_t value) {
            auto& field = settings.*Record.*Field;
            field = static_cast<std::remove_reference_t<decltype(field)>>(value);
          }};
}

constexpr OptionButton kRawCompressions[] = {
    {"8-bit mu-Law ", 3, "Select compression type"},
    {"8-bit A-Law ", 2, "Select compression type"},
    {"16-bit PCM", 1, "Select compression type"},
};
constexpr OptionButton kRawChannels[] = {{"Stereo", 2, kChannelsTip}, {"Mono", 1, kChannelsTip}};
constexpr OptionButton kRawRates[] = {
    {"6000", 6000, kRateTip},   {"8000", 8000, kRateTip},   {"11025 ", 11025, kRateTip},
    {"12000", 12000, kRateTip}, {"16000", 16000, kRateTip}, {"22050", 22050, kRateTip},
    {"24000", 24000, kRateTip}, {"32000", 32000, kRateTip}, {"44100", 44100, kRateTip},
    {"48000", 48000, kRateTip},
};
constexpr OptionGroup kRawGroups[] = {
    Group<&config::Settings::FormatRAW, &config::FormatRAW::Compression>("optCompression", "Compression",
                                                                         kRawCompressions),
    Group<&config::Settings::FormatRAW, &config::FormatRAW::Channels>("optChannels", "Channels",
                                                                      kRawChannels),
    Group<&config::Settings::FormatRAW, &config::FormatRAW::Frequency>("optFrequency", kRateFrame, kRawRates),
};

constexpr OptionButton kRates[] = {
    {"8000", 8000, kRateTip},   {"11025", 11025, kRateTip}, {"16000", 16000, kRateTip},
    {"22050", 22050, kRateTip}, {"24000", 24000, kRateTip}, {"32000", 32000, kRateTip},
    {"44100", 44100, kRateTip}, {"48000", 48000, kRateTip},
};
constexpr OptionGroup kVoxGroups[] = {
    Group<&config::Settings::FormatVOX, &config::FormatVOX::Frequency>("optFrequency", kRateFrame, kRates),
};

// The tip of "Stereo" has always been the one about bits.
constexpr OptionButton kWavChannels[] = {{"Stereo", 2, kBitsTip}, {"Mono", 1, kChannelsTip}};
constexpr OptionButton kWavBits[] = {{"16 Bits", 16, kBitsTip}, {"8 Bits", 8, kBitsTip}};
constexpr OptionGroup kWavGroups[] = {
    Group<&config::Settings::FormatWAV, &config::FormatWAV::Channels>("optChannels", "Channels",
                                                                      kWavChannels),
    Group<&config::Settings::FormatWAV, &config::FormatWAV::Bits>("optBits", "Bits Per Sample", kWavBits),
    Group<&config::Settings::FormatWAV, &config::FormatWAV::Frequency>("optFrequency", kRateFrame, kRates),
};

constexpr std::string_view k726BitsTip = "Select number of bits per sample to record";
constexpr std::string_view k726RateTip = "Select sample rate for this format";
constexpr OptionButton k726Bits[] = {{"2 bit ", 2, k726BitsTip},
                                     {"3 bit", 3, k726BitsTip},
                                     {"4 bit ", 4, k726BitsTip},
                                     {"5 bit", 5, k726BitsTip}};
constexpr OptionButton k726Rates[] = {
    {"6000", 6000, k726RateTip},   {"8000", 8000, k726RateTip},   {"11025", 11025, k726RateTip},
    {"12000", 12000, k726RateTip}, {"16000", 16000, k726RateTip}, {"22050", 22050, k726RateTip},
    {"24000", 24000, k726RateTip}, {"32000", 32000, k726RateTip}, {"44100", 44100, k726RateTip},
    {"48000", 48000, k726RateTip},
};
constexpr OptionGroup k726Groups[] = {
    Group<&config::Settings::Format726, &config::Format726::Bits>("optADPCM", "Bits Per Sample", k726Bits),
    Group<&config::Settings::Format726, &config::Format726::Frequency>("optFrequency", kRateFrame, k726Rates),
};

constexpr std::string_view kLevelTip =
    "Select how long to search for the smallest file; nothing is lost at any level";
constexpr OptionButton kFlacLevels[] = {
    {"0 (fastest)", 0, kLevelTip}, {"1", 1, kLevelTip}, {"2", 2, kLevelTip},
    {"3", 3, kLevelTip},           {"4", 4, kLevelTip}, {"5", 5, kLevelTip},
    {"6", 6, kLevelTip},           {"7", 7, kLevelTip}, {"8 (smallest)", 8, kLevelTip},
};
constexpr OptionGroup kFlacGroups[] = {
    Group<&config::Settings::FormatFLAC, &config::FormatFLAC::Level>("optLevel", "Compression Level",
                                                                     kFlacLevels),
};

constexpr std::string_view kApplicationTip = "Select what the encoder is made for";
constexpr std::string_view kOpusBitrateTip = "Select average bitrate to record";
constexpr OptionButton kOpusApplications[] = {{"Music", 0, kApplicationTip}, {"Voice", 1, kApplicationTip}};
constexpr OptionButton kOpusBitrates[] = {
    {"32", 32, kOpusBitrateTip},   {"48", 48, kOpusBitrateTip},   {"64", 64, kOpusBitrateTip},
    {"80", 80, kOpusBitrateTip},   {"96", 96, kOpusBitrateTip},   {"112", 112, kOpusBitrateTip},
    {"128", 128, kOpusBitrateTip}, {"160", 160, kOpusBitrateTip}, {"192", 192, kOpusBitrateTip},
    {"224", 224, kOpusBitrateTip}, {"256", 256, kOpusBitrateTip},
};
constexpr OptionGroup kOpusGroups[] = {
    Group<&config::Settings::FormatOPUS, &config::FormatOPUS::Voice>("optApplication", "Made For",
                                                                     kOpusApplications),
    Group<&config::Settings::FormatOPUS, &config::FormatOPUS::Bitrate>("optBitrate", "Bitrate (kbit/s)",
                                                                       kOpusBitrates),
};

constexpr OptionWindow kWindows[] = {
    {"RAW", "RAW Options", kRawGroups},    {"VOX", "VOX Options", kVoxGroups},
    {"WAV", "WAV Options", kWavGroups},    {"G726", "Set CCUIT G.726 Format", k726Groups},
    {"FLAC", "FLAC Options", kFlacGroups}, {"OPUS", "Opus Options", kOpusGroups},
};

}  // namespace

std::span<const OptionWindow> OptionWindows() {
  return kWindows;
}

const OptionWindow* FindOptionWindow(std::string_view fileFormat) {
  const auto* found = std::ranges::find(kWindows, fileFormat, &OptionWindow::FileFormat);
  return found != std::end(kWindows) ? found : nullptr;
}

FormatOptions::FormatOptions(const OptionWindow& design, config::SettingsDoor& settings)
    : design_(design), settings_(settings) {
  Load();
}

void FormatOptions::Load() {
  values_.clear();
  for (const OptionGroup& group : design_.Groups) values_.push_back(group.Read(settings_.Current()));
}

int FormatOptions::On(std::size_t group) const {
  const std::span<const OptionButton> buttons = design_.Groups[group].Buttons;
  const auto found = std::ranges::find(buttons, values_[group], &OptionButton::Value);
  return found == buttons.end() ? -1 : static_cast<int>(found - buttons.begin());
}

void FormatOptions::Choose(std::size_t group, std::size_t button) {
  values_[group] = design_.Groups[group].Buttons[button].Value;
}

bool FormatOptions::cmdOK() {
  config::Settings wished = settings_.Current();
  for (std::size_t group = 0; group < values_.size(); ++group) {
    design_.Groups[group].Write(wished, values_[group]);
  }
  return settings_.ChangeFormat(wished, design_.FileFormat).Saved;
}

}  // namespace kestrune::presenters
