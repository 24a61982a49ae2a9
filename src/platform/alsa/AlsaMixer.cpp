#include "platform/alsa/AlsaMixer.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <utility>

#include <alsa/asoundlib.h>
#include <poll.h>

#include "base/Ignored.h"

namespace kestrune::platform {
namespace {

constexpr std::chrono::seconds kRetryInterval{1};
constexpr auto kLeft = SND_MIXER_SCHN_FRONT_LEFT;
constexpr auto kRight = SND_MIXER_SCHN_FRONT_RIGHT;

struct MixerCloser {
  void operator()(snd_mixer_t* mixer) const { snd_mixer_close(mixer); }
};

/// The library would print a line about each card that is not there.
void Quiet(const char* /*file*/, int /*line*/, const char* /*function*/, int /*error*/,
           const char* /*format*/, ...) {}

std::string ElementName(snd_mixer_elem_t* element) {
  std::string name = snd_mixer_selem_get_name(element);
  const unsigned index = snd_mixer_selem_get_index(element);
  return index == 0 ? name : name + " " + std::to_string(index);
}

/// Chooses between sources, as "Input Source" or "Capture Source"; the mixer leaves other choices alone.
bool ChoosesSource(snd_mixer_elem_t* element) {
  return snd_mixer_selem_is_enum_capture(element) != 0 &&
         ElementName(element).find("Source") != std::string::npos;
}

bool HasSides(snd_mixer_elem_t* element) {
  return snd_mixer_selem_is_capture_mono(element) == 0 &&
         snd_mixer_selem_has_capture_channel(element, kRight) != 0 &&
         snd_mixer_selem_has_capture_volume_joined(element) == 0;
}

bool Captured(snd_mixer_elem_t* element) {
  for (int channel = 0; channel <= SND_MIXER_SCHN_LAST; ++channel) {
    const auto id = static_cast<snd_mixer_selem_channel_id_t>(channel);
    int on = 0;
    if (snd_mixer_selem_has_capture_channel(element, id) != 0 &&
        snd_mixer_selem_get_capture_switch(element, id, &on) == 0 && on != 0)
      return true;
  }
  return false;
}

struct Range {
  long Least = 0;
  long Most = 0;
};

Range VolumeRange(snd_mixer_elem_t* element) {
  Range range;
  snd_mixer_selem_get_capture_volume_range(element, &range.Least, &range.Most);
  return range;
}

std::int32_t FromCard(long volume, Range range) {
  if (range.Most <= range.Least) return 0;
  const double part =
      static_cast<double>(volume - range.Least) / static_cast<double>(range.Most - range.Least);
  return static_cast<std::int32_t>(std::lround(std::clamp(part, 0.0, 1.0) * Mixer::kMaxVolume));
}

long ToCard(double volume, Range range) {
  return range.Least +
         std::lround(volume / Mixer::kMaxVolume * static_cast<double>(range.Most - range.Least));
}

}  // namespace

struct AlsaMixer::Card {
  struct Line {
    snd_mixer_elem_t* Element = nullptr;
    int Choice = -1;  ///< of a control that chooses; -1: the control is the line
  };
  std::unique_ptr<snd_mixer_t, MixerCloser> Mixer;
  std::vector<Line> Lines;
};

AlsaMixer::AlsaMixer() = default;

AlsaMixer::~AlsaMixer() = default;

std::vector<std::string> AlsaMixer::CardNames(const std::string& device) {
  const std::size_t colon = device.find(':');
  if (colon == std::string::npos)
    return device.empty() || device == "default" ? std::vector<std::string>{"default"}
                                                 : std::vector<std::string>{device, "default"};
  std::string card = device.substr(colon + 1);
  if (const std::size_t named = card.find("CARD="); named != std::string::npos) card.erase(0, named + 5);
  card.erase(std::min(card.find(','), card.size()));
  return {"hw:" + card};
}

void AlsaMixer::Open(const std::string& device) {
  Close();
  device_ = device;
  open_ = true;
  base::Ignored(Attach());
}

void AlsaMixer::Close() {
  card_.reset();
  balances_.clear();
  open_ = false;
  SetLines({});
}

bool AlsaMixer::Attach() {
  retryAt_ = std::chrono::steady_clock::now() + kRetryInterval;
  snd_lib_error_set_handler(&Quiet);
  for (const std::string& name : CardNames(device_)) {
    snd_mixer_t* opened = nullptr;
    if (snd_mixer_open(&opened, 0) < 0) continue;
    std::unique_ptr<snd_mixer_t, MixerCloser> mixer(opened);
    if (snd_mixer_attach(opened, name.c_str()) < 0 ||
        snd_mixer_selem_register(opened, nullptr, nullptr) < 0 || snd_mixer_load(opened) < 0)
      continue;
    card_ = std::make_unique<Card>();
    card_->Mixer = std::move(mixer);
    break;
  }
  Read();
  return card_ != nullptr;
}

bool AlsaMixer::Update() {
  if (!open_) return false;
  if (card_ == nullptr) return std::chrono::steady_clock::now() >= retryAt_ && Attach();
  std::array<pollfd, 16> waits{};
  const int count = snd_mixer_poll_descriptors(card_->Mixer.get(), waits.data(), waits.size());
  if (count < 0 || poll(waits.data(), static_cast<nfds_t>(count), 0) <= 0) return false;
  unsigned short happened = 0;
  snd_mixer_poll_descriptors_revents(card_->Mixer.get(), waits.data(), static_cast<unsigned>(count),
                                     &happened);
  if ((happened & (POLLERR | POLLNVAL)) != 0 || snd_mixer_handle_events(card_->Mixer.get()) < 0)
    card_.reset();
  Read();
  return true;
}

void AlsaMixer::Read() {
  std::vector<MixerLine> lines;
  if (card_ == nullptr) {
    SetLines({});
    return;
  }
  card_->Lines.clear();
  for (snd_mixer_elem_t* element = snd_mixer_first_elem(card_->Mixer.get()); element != nullptr;
       element = snd_mixer_elem_next(element)) {
    if (snd_mixer_selem_is_active(element) == 0) continue;
    if (ChoosesSource(element)) {
      unsigned chosen = 0;
      snd_mixer_selem_get_enum_item(element, kLeft, &chosen);
      for (int choice = 0; choice < snd_mixer_selem_get_enum_items(element); ++choice) {
        std::array<char, 128> name{};
        snd_mixer_selem_get_enum_item_name(element, static_cast<unsigned>(choice), name.size() - 1,
                                           name.data());
        MixerLine line;
        line.Name = name.data();
        line.CanSelect = true;
        line.Selected = chosen == static_cast<unsigned>(choice);
        lines.push_back(std::move(line));
        card_->Lines.push_back({element, choice});
      }
      continue;
    }
    MixerLine line;
    line.Name = ElementName(element);
    line.HasVolume = snd_mixer_selem_has_capture_volume(element) != 0;
    line.CanSelect = snd_mixer_selem_has_capture_switch(element) != 0;
    if (!line.HasVolume && !line.CanSelect) continue;
    line.Selected = line.CanSelect && Captured(element);
    if (line.HasVolume) {
      const Range range = VolumeRange(element);
      long left = range.Least;
      long right = range.Least;
      snd_mixer_selem_get_capture_volume(element, kLeft, &left);
      line.HasBalance = HasSides(element);
      if (line.HasBalance) snd_mixer_selem_get_capture_volume(element, kRight, &right);
      const long loudest = std::max(left, right);
      line.Volume = FromCard(loudest, range);
      if (line.HasBalance && loudest > range.Least) {
        const double sides = static_cast<double>(right - left) / static_cast<double>(loudest - range.Least);
        balances_[line.Name] = static_cast<std::int16_t>(std::lround((sides + 1) * kMiddle));
      }
      const auto known = balances_.find(line.Name);
      if (known != balances_.end()) line.Balance = known->second;
    }
    lines.push_back(std::move(line));
    card_->Lines.push_back({element, -1});
  }
  SetLines(std::move(lines));
}

void AlsaMixer::WriteVolume(std::size_t line, std::int32_t volume) {
  WriteSides(line, volume, Balance());
}

void AlsaMixer::WriteBalance(std::size_t line, std::int16_t balance) {
  balances_[ElementName(card_->Lines[line].Element)] = balance;
  WriteSides(line, Volume(), balance);
}

void AlsaMixer::WriteSides(std::size_t line, std::int32_t volume, std::int16_t balance) {
  snd_mixer_elem_t* element = card_->Lines[line].Element;
  const Range range = VolumeRange(element);
  const double sides = static_cast<double>(balance) / kMiddle - 1;
  if (HasBalance()) {
    const long left = ToCard(volume * std::min(1.0, 1 - sides), range);
    const long right = ToCard(volume * std::min(1.0, 1 + sides), range);
    const int error = snd_mixer_selem_set_capture_volume(element, kLeft, left);
    TakeIn(error < 0 ? error : snd_mixer_selem_set_capture_volume(element, kRight, right));
  } else {
    TakeIn(snd_mixer_selem_set_capture_volume_all(element, ToCard(volume, range)));
  }
}

void AlsaMixer::WriteSelected(std::size_t line, bool selected) {
  const auto [element, choice] = card_->Lines[line];
  int error = 0;
  if (choice < 0) {
    error = snd_mixer_selem_set_capture_switch_all(element, selected ? 1 : 0);
  } else if (selected) {
    for (int channel = 0; channel <= SND_MIXER_SCHN_LAST && error >= 0; ++channel) {
      const auto id = static_cast<snd_mixer_selem_channel_id_t>(channel);
      error = snd_mixer_selem_set_enum_item(element, id, static_cast<unsigned>(choice));
    }
  }
  TakeIn(error);
}

/// Reads how things stand after a write. A card that the write found gone is looked for as one that was unplugged.
void AlsaMixer::TakeIn(int error) {
  if (error == -ENODEV) {
    card_.reset();
    retryAt_ = std::chrono::steady_clock::now() + kRetryInterval;
  } else {
    base::Ignored(Update());
  }
  Read();
}

}  // namespace kestrune::platform
