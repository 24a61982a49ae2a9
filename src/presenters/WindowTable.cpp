#include "presenters/WindowTable.h"

#include <algorithm>
#include <iterator>

namespace kestrune::presenters {
namespace {

using config::Settings;

constexpr WindowRow kWindows[] = {
    {.Name = recorder::WindowName::Channels,
     .Entry = "mnuChannels",
     .EntryText = "&Channel Listing",
     .Key = 'H',
     .Box = "chkChannelListing",
     .BoxText = "Channel Listing",
     .BoxTip = "Show/Hide channel listing",
     .Checked = &DesktopRecord::chkChannelListing,
     .SettingKey = "ChannelListing",
     .Setting = &Settings::ChannelListing,
     .Permanent = true,
     .NeedsBoxToReturn = true},
    {.Name = recorder::WindowName::Log,
     .Entry = "mnuLog",
     .EntryText = "Recording &Log",
     .Key = 'L',
     .Box = "chkRecordLog",
     .BoxText = "Recording Log",
     .BoxTip = "Show/Hide songs recorded log",
     .Checked = &DesktopRecord::chkRecordLog,
     .SettingKey = "RecordLog",
     .Setting = &Settings::RecordLog,
     .Permanent = true,
     .NeedsBoxToReturn = true},
    {.Name = recorder::WindowName::Schedule,
     .Entry = "mnuSchedule",
     .EntryText = "&Timer Schedule",
     .Key = 'T',
     .Box = "chkSchedule",
     .BoxText = "Timer Schedule",
     .BoxTip = "Show/Hide timer schedule screen",
     .Checked = &DesktopRecord::chkSchedule,
     .NeedsBoxToReturn = true},
    {.Name = recorder::WindowName::RestrictList,
     .Entry = "mnuRestrictList",
     .EntryText = "Grab/Kill &Lists",
     .Key = 'B',
     .Box = "chkRestrictList",
     .BoxText = "Grab/Kill Lists",
     .BoxTip = "Show/Hide grab/kill list screen",
     .Checked = &DesktopRecord::chkRestrictList,
     .NeedsBoxToReturn = true},
    {.Name = recorder::WindowName::KestruneNow,
     .Entry = "mnuKestruneNow",
     .EntryText = "Kestrune &Now",
     .Key = 'W',
     .Box = "chkKestruneNow",
     .BoxText = "Kestrune Now",
     .BoxTip = "Show/HideKestrune Now Screen",
     .Checked = &DesktopRecord::chkKestruneNow,
     .SettingKey = "KestruneNow",
     .Setting = &Settings::KestruneNow},
    {.Name = recorder::WindowName::Report,
     .Entry = "mnuReport",
     .EntryText = "Recording Rep&ort",
     .Box = "chkReport",
     .BoxText = "Recording Report",
     .BoxTip = "Show/Hide what was recorded and what went wrong",
     .Checked = &DesktopRecord::chkReport,
     .SettingKey = "RecordingReport",
     .Setting = &Settings::RecordingReport},
    {.Name = recorder::WindowName::Shelf, .Entry = "mnuShelf", .EntryText = "Sh&elf", .Key = 'E'},
    {.Name = recorder::WindowName::Presets, .Entry = "mnuPresets", .EntryText = "Edit &Presets"},
    {.Name = recorder::WindowName::Config, .Entry = "mnuPreferences", .EntryText = "&Configuration"},
    {.Name = recorder::WindowName::Mixer, .HidesWithMain = false},
};

}  // namespace

std::span<const WindowRow> WindowTable() {
  return kWindows;
}

const WindowRow& RowOf(recorder::WindowName name) {
  return *std::ranges::find(kWindows, name, &WindowRow::Name);
}

}  // namespace kestrune::presenters
