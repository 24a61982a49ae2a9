#include "config/settings/SettingChecks.h"

#include <algorithm>
#include <set>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "base/Numbers.h"
#include "base/Text.h"
#include "config/formats/FormatTable.h"
#include "platform/CaptureFormat.h"

namespace kestrune::config {
namespace {

base::Result CheckState(std::int16_t state) {
  return state == 0 || state == 1 ? base::Result::Done() : base::Result::Failed("is neither 0 nor 1");
}

base::Result CheckFolder(std::string& folder, const platform::Environment& environment) {
  if (folder.empty()) return base::Result::Failed("is empty; a folder begins with / or ~/");
  if (folder == "~" || folder.starts_with("~/")) {
    const std::string home = environment.Variable("userprofile");
    if (home.empty()) return base::Result::Failed("needs the home folder, which is not known");
    folder.replace(0, 1, home);
  }
  if (!folder.starts_with('/')) return base::Result::Failed("is not a folder that begins with / or ~/");
  if (!folder.ends_with('/')) folder += '/';
  return base::Result::Done();
}

}  // namespace

base::Result CheckSievanceGrab(Settings& wished, const platform::Environment& /*environment*/) {
  return CheckState(wished.SievanceGrab);
}

base::Result CheckSievanceKill(Settings& wished, const platform::Environment& /*environment*/) {
  return CheckState(wished.SievanceKill);
}

base::Result CheckSongLengths(Settings& wished, const platform::Environment& /*environment*/) {
  if (SongLengthsAgree(wished.MinSongLength, wished.MaxSongLength)) return base::Result::Done();
  return base::Result::Failed(fmt::format("is refused. {}; now {} and {}, 0 for no maximum", kSongLengthText,
                                          wished.MinSongLength, wished.MaxSongLength));
}

base::Result CheckSongDelay(Settings& wished, const platform::Environment& /*environment*/) {
  if (wished.SongDelay == INT16_MIN) return base::Result::Failed("is not from -32767 to 32767");
  if (wished.SongDelay < 0) wished.SongDelay = static_cast<std::int16_t>(-wished.SongDelay);
  return base::Result::Done();
}

base::Result CheckIdleCaptureMinutes(Settings& wished, const platform::Environment& /*environment*/) {
  if (wished.IdleCaptureMinutes < 0) return base::Result::Failed("is not from 0 to 32767");
  return base::Result::Done();
}

base::Result CheckCutOverlap(Settings& wished, const platform::Environment& /*environment*/) {
  if (wished.CutOverlap >= 0 && wished.CutOverlap <= kLongestCutOverlap) return base::Result::Done();
  return base::Result::Failed(fmt::format("is not from 0 to {}", kLongestCutOverlap));
}

base::Result CheckFlacLevel(Settings& wished, const platform::Environment& /*environment*/) {
  const std::int16_t level = wished.FormatFLAC.Level;
  if (level >= 0 && level <= platform::kMostFlacLevel) return base::Result::Done();
  return base::Result::Failed(fmt::format("is not from 0 to {}", platform::kMostFlacLevel));
}

base::Result CheckOpusBitrate(Settings& wished, const platform::Environment& /*environment*/) {
  const std::int16_t bitrate = wished.FormatOPUS.Bitrate;
  if (bitrate >= platform::kLeastOpusBitrate && bitrate <= platform::kMostOpusBitrate)
    return base::Result::Done();
  return base::Result::Failed(
      fmt::format("is not from {} to {}", platform::kLeastOpusBitrate, platform::kMostOpusBitrate));
}

base::Result CheckFileDir(Settings& wished, const platform::Environment& environment) {
  if (base::Result folder = CheckFolder(wished.FileDir, environment); !folder.Ok()) return folder;
  if (wished.FileDir != wished.ShelfFolder) return base::Result::Done();
  return base::Result::Failed("is the folder of the shelf; recordings need one of their own");
}

base::Result CheckShelfFolder(Settings& wished, const platform::Environment& environment) {
  if (wished.ShelfFolder.empty()) return base::Result::Done();
  if (base::Result folder = CheckFolder(wished.ShelfFolder, environment); !folder.Ok()) return folder;
  if (wished.ShelfFolder != wished.FileDir) return base::Result::Done();
  return base::Result::Failed("is the folder of recordings; the shelf needs one of its own");
}

base::Result CheckShelfSongs(Settings& wished, const platform::Environment& /*environment*/) {
  if (wished.ShelfSongs >= 0 && wished.ShelfSongs <= kMostShelfSongs) return base::Result::Done();
  return base::Result::Failed(fmt::format("is not from 0 to {}", kMostShelfSongs));
}

base::Result CheckShelfMegabytes(Settings& wished, const platform::Environment& /*environment*/) {
  if (wished.ShelfMegabytes >= 1 && wished.ShelfMegabytes <= kMostShelfMegabytes) return base::Result::Done();
  return base::Result::Failed(fmt::format("is not from 1 to {}", kMostShelfMegabytes));
}

base::Result CheckFileFormat(Settings& wished, const platform::Environment& /*environment*/) {
  if (FindFormat(wished.FileFormat) != nullptr) return base::Result::Done();
  return base::Result::Failed(fmt::format("is not one of {}", fmt::join(FileFormats(), ", ")));
}

base::Result CheckFavourites(Settings& wished, const platform::Environment& /*environment*/) {
  constexpr std::int16_t kLastChannel = 255;
  std::set<std::int16_t> channels;
  for (const std::string& word : base::Split(wished.Favourites, ' ')) {
    if (word.empty()) continue;
    const auto channel = base::ToInt16(word);
    if (!channel || *channel < 0 || *channel > kLastChannel)
      return base::Result::Failed(fmt::format("is not a list of numbers from 0 to {}", kLastChannel));
    channels.insert(*channel);
  }
  wished.Favourites = fmt::format("{}", fmt::join(channels, " "));
  return base::Result::Done();
}

base::Result CheckFilenameFormat(Settings& wished, const platform::Environment& /*environment*/) {
  wished.FilenameFormat = CleanFilenameFormat(wished.FilenameFormat);
  return base::Result::Done();
}

std::string CleanFilenameFormat(std::string_view text) {
  constexpr std::string_view kForbidden = "|<>^+=?\":;*$@";
  std::string clean(base::Trim(text));
  std::replace(clean.begin(), clean.end(), '/', '\\');
  std::erase_if(clean, [&](char c) { return kForbidden.find(c) != std::string_view::npos; });

  // Blanks are trimmed only where a backslash was taken away: a backslash that a blank hides at this point stays.
  std::string_view rest = clean;
  while (rest.starts_with('\\')) rest = base::Trim(rest.substr(1));
  while (rest.ends_with('\\')) rest = base::Trim(rest.substr(0, rest.size() - 1));
  return std::string(base::Trim(rest));
}

}  // namespace kestrune::config
