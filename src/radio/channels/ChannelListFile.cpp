#include "radio/channels/ChannelListFile.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include <fmt/format.h>

#include "base/Numbers.h"
#include "base/Text.h"
#include "radio/channels/ChannelTable.h"

namespace kestrune::radio {

namespace {

std::int16_t ParseNumber(const std::string& field) {
  const auto number = base::ToInt16(base::LeadingNumber(field)).value_or(0);
  return number >= 0 && number <= ChannelTable::kLastSlot ? number : std::int16_t{0};
}

std::string OneLine(std::string text) {
  const auto isControl = [](char character) {
    const auto byte = static_cast<unsigned char>(character);
    return byte < 0x20 || byte == 0x7F;
  };
  std::replace_if(text.begin(), text.end(), isControl, ' ');
  return text;
}

}  // namespace

void ChannelListFile::SetPlace(std::string_view userDataFolder, std::string_view multiUnit) {
  path_ = fmt::format("{}/ChannelList{}.txt", userDataFolder, multiUnit);
}

std::vector<ChannelEntry> ChannelListFile::Read() const {
  return Parse(files_.Read(path_).value_or(""));
}

bool ChannelListFile::Write(const std::vector<ChannelEntry>& entries) {
  return files_.Replace(path_, Format(entries)).Ok();
}

std::vector<ChannelEntry> ChannelListFile::Parse(std::string_view text) {
  std::vector<ChannelEntry> entries;
  for (const std::string& line : base::Lines(text)) {
    std::vector<std::string> fields = base::Split(line, '\t');
    fields.resize(std::max<std::size_t>(fields.size(), 5));
    ChannelEntry entry;
    entry.Number = ParseNumber(fields[0]);
    entry.Station = std::move(fields[1]);
    if (entry.Number != 1) entry.Genre = std::move(fields[4]);
    entries.push_back(std::move(entry));
  }
  return entries;
}

std::string ChannelListFile::Format(const std::vector<ChannelEntry>& entries) {
  std::string text;
  for (const ChannelEntry& entry : entries) {
    text += fmt::format("{}\t{}\t\t\t{}\n", entry.Number, OneLine(entry.Station), OneLine(entry.Genre));
  }
  return text;
}

}  // namespace kestrune::radio
