// Any text may be asked for as a moment and as a search. A moment that is read is not in the future. A search finds
// exactly what a plain look through all rows finds, whatever signs it has for the database.

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <unistd.h>

#include "base/Text.h"
#include "control/Utf8.h"
#include "history/Since.h"
#include "platform/sqlite/HistoryFile.h"
#include "platform/sqlite/HistoryReader.h"
#include "platform/sqlite/HistoryWriter.h"

namespace {

using namespace kestrune;
using base::DateValue;

const DateValue kNow = DateValue::FromCivil(2026, 11, 22, 7, 30, 10);
const std::atomic<bool> kNever{false};

void Require(bool holds) {
  if (!holds) std::abort();
}

const std::vector<std::string> kTexts{"Moon",
                                      "River Band",
                                      "100% _a_b_",
                                      "say \"hey\"",
                                      "it's; DROP TABLE play;--",
                                      "AND OR NOT NEAR(x, 2)",
                                      "artist:x*",
                                      "^(+-)",
                                      "a\\b\\\\",
                                      "\xC3\x9C"
                                      "ber \xC3\xA9t\xC3\xA9",
                                      "\xC2\xB5 \xC3\xBF \xC3\x9F",
                                      "{a b}: c",
                                      "aaaa",
                                      "\xC3\x84\xC3\x96\xC3\x9C"};

/// A record that has each text with each other one.
class Record {
 public:
  Record() {
    std::string folder = std::filesystem::temp_directory_path().string() + "/kestrune-fuzz-XXXXXX";
    Require(::mkdtemp(folder.data()) != nullptr);
    folder_ = folder;
    const std::string path = folder_ + "/History.db";
    auto opened = platform::OpenHistoryFile(path, kNever);
    Require(opened.Database != nullptr);
    platform::HistoryWriter writer(*opened.Database, {});
    platform::HistoryRows rows;
    for (const std::string& artist : kTexts) {
      for (const std::string& title : kTexts) {
        rows.Plays.push_back({.Channel = 1,
                              .Station = {},
                              .Genre = {},
                              .Artist = artist,
                              .Title = title,
                              .From = kNow.AddMinutes(static_cast<std::int64_t>(rows.Plays.size())),
                              .To = kNow});
      }
    }
    Require(writer.Write(rows));
    Plays = rows.Plays;
    database_ = platform::OpenHistoryForQuestions(path, kNever);
    Require(database_ != nullptr);
    Reader = std::make_unique<platform::HistoryReader>(*database_);
  }
  ~Record() {
    Reader.reset();
    database_.reset();
    std::filesystem::remove_all(folder_);
  }
  Record(const Record&) = delete;
  Record& operator=(const Record&) = delete;

  std::vector<platform::HistoryPlay> Plays;
  std::unique_ptr<platform::HistoryReader> Reader;

 private:
  std::string folder_;
  std::unique_ptr<platform::SqliteConnection> database_;
};

/// Whether the text is of the radio's letters, whose cases both sides fold alike.
bool IsPlain(std::string_view text) {
  while (!text.empty()) {
    const auto point = control::FirstCodePoint(text);
    if (!point || point->Value < 0x20 || point->Value > 0xFF) return false;
    text.remove_prefix(point->Bytes);
  }
  return true;
}

bool Has(const platform::HistoryPlay& play, const std::vector<std::string>& words) {
  return std::all_of(words.begin(), words.end(), [&play](const std::string& word) {
    return word.empty() || base::ContainsNoCase(play.Artist, word) || base::ContainsNoCase(play.Title, word);
  });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  const history::SinceRead since = history::ReadSince(text, kNow);
  if (since.Error.empty()) {
    Require(since.Since <= kNow);
    Require(history::IsSince(text));
  }
  Require(since.Error.find('\n') == std::string::npos);

  static const Record record;
  const auto found = record.Reader->Search({.Text = text, .Channel = 0, .Since = {}, .Limit = 1000});
  Require(found.has_value());
  if (!IsPlain(text)) return 0;
  const std::vector<std::string> words = base::Split(text, ' ');
  std::vector<platform::HistoryPlay> wanted;
  for (const platform::HistoryPlay& play : record.Plays)
    if (Has(play, words)) wanted.push_back(play);
  Require(found->size() == wanted.size());
  for (std::size_t i = 0; i < wanted.size(); ++i) {
    Require((*found)[i].From == wanted[wanted.size() - 1 - i].From);
    Require((*found)[i].Title == wanted[wanted.size() - 1 - i].Title);
  }
  return 0;
}
