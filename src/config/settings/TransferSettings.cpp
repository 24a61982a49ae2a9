#include "config/settings/TransferSettings.h"

#include <string>
#include <vector>

#include "base/Ignored.h"
#include "base/Numbers.h"

namespace kestrune::config {
namespace {

constexpr std::string_view kOldApplication = "Varrowen";
constexpr std::string_view kApplication = "Lorimel";
constexpr std::string_view kSection = "Kestrune";

constexpr std::string_view kUpToSchedules[] = {
    "AdsVisible",       "BigFormHeight",   "BigFormLeft",    "BigFormTop",     "BigFormWidth",
    "BitRate",          "Channel",         "ChannelHeight",  "ChannelLeft",    "ChannelTop",
    "ConfigLeft",       "ConfigTop",       "DateSelectLeft", "DateSelectTop",  "FileDir",
    "FileFormat",       "FilenameFormat",  "InputDevice",    "LegalAgreement", "LogHeight",
    "LogLeft",          "LogTop",          "LogWidth",       "MainLeft",       "MainTop",
    "SievanceGrab",     "SievanceKill",    "MaxSongLength",  "MinSongLength",  "Integrel",
    "PortNum",          "Preset1",         "Preset10",       "Preset11",       "Preset12",
    "Preset2",          "Preset3",         "Preset4",        "Preset5",        "Preset6",
    "Preset7",          "Preset8",         "Preset9",        "PresetLeft",     "PresetTop",
    "RestrictListLeft", "RestrictListTop", "SaveDuplicates",
};
constexpr std::string_view kSchedulesBeforeLeft[] = {"ScheduleChannel", "ScheduleDuration",
                                                     "ScheduleEnabled"};
constexpr std::string_view kSchedulesBeforeTop[] = {
    "ScheduleMatchGrab", "ScheduleMatchKill", "ScheduleIntegrel", "ScheduleRestrict", "ScheduleStartDate"};
constexpr std::string_view kEntries[] = {"1", "10", "2", "3", "4", "5", "6", "7", "8", "9"};
constexpr std::string_view kAfterSchedules[] = {"ScheduleTop", "SongDelay", "Stereo", "TaskBarMinimized",
                                                "UseRestrictions"};

/// The keys of the older release, in order, each followed by the unit. Nothing reads some of them any more.
std::vector<std::string> OldKeys(std::string_view multiUnit) {
  std::vector<std::string> keys;
  const auto add = [&](std::string_view key, std::string_view entry = {}) {
    keys.push_back(std::string(key).append(entry).append(multiUnit));
  };
  for (const std::string_view key : kUpToSchedules) add(key);
  for (const std::string_view key : kSchedulesBeforeLeft) {
    for (const std::string_view entry : kEntries) add(key, entry);
  }
  add("ScheduleLeft");
  for (const std::string_view key : kSchedulesBeforeTop) {
    for (const std::string_view entry : kEntries) add(key, entry);
  }
  for (const std::string_view key : kAfterSchedules) add(key);
  return keys;
}

void MoveDataFolder(platform::Files& files, std::string_view profile) {
  const std::string oldFolder = std::string(profile) + "/Application Data/Varrowen Kestrune";
  const std::string newFolder = std::string(profile) + "/Application Data/Kestrune";
  for (;;) {
    const std::vector<std::string> names = files.Matching(oldFolder, "*");
    if (names.empty()) break;
    const std::string from = oldFolder + "/" + names.front();
    const std::string to = newFolder + "/" + names.front();
    base::Ignored(files.Remove(to));
    base::Ignored(files.Copy(from, to));
    base::Ignored(files.Remove(from));
  }
  base::Ignored(files.RemoveFolder(oldFolder));
}

}  // namespace

void TransferSettings(platform::SettingsStore& store, platform::Files& files,
                      const platform::Environment& environment, std::string_view multiUnit) {
  // The unit is part of the section here and of the keys below; both are the same for the empty unit.
  const std::string guardSection = std::string(kSection).append(multiUnit);
  if (base::LeadingNumber(store.GetSetting(kOldApplication, guardSection, "MainTop", "-1")) == -1) return;

  const std::string profile = environment.Variable("userprofile");
  if (!profile.empty()) MoveDataFolder(files, profile);

  const std::vector<std::string> keys = OldKeys(multiUnit);
  for (const std::string& key : keys) {
    const std::string value = store.GetSetting(kOldApplication, kSection, key, {});
    if (!value.empty()) base::Ignored(store.SaveSetting(kApplication, kSection, key, value));
  }
  for (const std::string& key : keys) base::Ignored(store.DeleteSetting(kOldApplication, kSection, key));
}

}  // namespace kestrune::config
