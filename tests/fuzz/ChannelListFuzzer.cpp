// A channel list file of any content: it is read without harm, and what is written from it reads back the
// same.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "radio/channels/ChannelListFile.h"
#include "radio/channels/ChannelTable.h"
#include "support/MemoryFiles.h"

namespace {

void Require(bool holds) {
  if (!holds) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using kestrune::radio::ChannelListFile;
  using kestrune::radio::ChannelTable;

  const std::string text(data, data + size);
  kestrune::test::MemoryFiles files;
  files.Put("/data/ChannelList2.txt", text);
  ChannelListFile file(files);
  file.SetPlace("/data", "2");
  const auto entries = file.Read();
  ChannelTable table;
  for (const auto& entry : entries) {
    Require(entry.Number >= 0 && entry.Number <= ChannelTable::kLastSlot);
    Require(entry.Number != 1 || entry.Genre.empty());
    if (!table.Add(entry)) break;
    Require(table.At(table.ChannelIndex(entry.Number)).Number == entry.Number);
  }
  ChannelTable cleared = table;
  cleared.Clear();
  Require(cleared.ChannelCount() == 0);
  for (const auto& entry : entries) Require(cleared.ChannelIndex(entry.Number) == 0);
  while (table.ChannelCount() > 0) table.Remove(1 + table.ChannelCount() / 2 % table.ChannelCount());

  const std::string saved = ChannelListFile::Format(entries);
  Require(file.Write(entries) && files.Text("/data/ChannelList2.txt") == saved);
  const auto again = file.Read();
  Require(again.size() == entries.size());
  Require(ChannelListFile::Format(again) == saved);
  return 0;
}
