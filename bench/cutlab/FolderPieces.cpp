#include "cutlab/FolderPieces.h"

#include <algorithm>
#include <filesystem>

#include <sndfile.hh>

namespace kestrune::cutlab {

namespace {

Stereo ReadSound(const std::string& path) {
  Stereo sound;
  SndfileHandle file(path);
  if (!file || file.channels() < 1) return sound;
  const auto channels = static_cast<std::size_t>(file.channels());
  std::vector<float> samples(static_cast<std::size_t>(file.frames()) * channels);
  const auto frames = static_cast<std::size_t>(file.readf(samples.data(), file.frames()));
  for (auto* channel : {&sound.Left, &sound.Right}) channel->reserve(frames);
  for (std::size_t i = 0; i < frames; ++i) {
    sound.Left.push_back(samples[i * channels]);
    sound.Right.push_back(samples[i * channels + (channels > 1 ? 1 : 0)]);
  }
  return sound;
}

}  // namespace

FolderPieces::FolderPieces(const std::string& folder) {
  constexpr std::string_view kHead = ".head.wav";
  std::error_code ignored;
  for (const auto& entry : std::filesystem::directory_iterator(folder, ignored)) {
    std::string path = entry.path().string();
    if (path.ends_with(kHead)) names_.push_back(path.substr(0, path.size() - kHead.size()));
  }
  for (const auto& entry : std::filesystem::directory_iterator(folder + "/voice", ignored)) {
    if (entry.path().extension() == ".wav") voices_.push_back(entry.path().string());
  }
  std::sort(names_.begin(), names_.end());
  std::sort(voices_.begin(), voices_.end());
}

Piece FolderPieces::Music(std::size_t index) {
  return {ReadSound(names_[index] + ".head.wav"), ReadSound(names_[index] + ".tail.wav")};
}

std::vector<float> FolderPieces::Voice(receiver::Dice& dice) {
  if (voices_.empty()) return {};
  return ReadSound(voices_[static_cast<std::size_t>(dice.Between(0, static_cast<int>(voices_.size()) - 1))])
      .Left;
}

}  // namespace kestrune::cutlab
