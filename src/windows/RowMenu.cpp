#include "windows/RowMenu.h"

#include <string>
#include <utility>

#include "base/OneLine.h"
#include "base/Text.h"
#include "windows/Binding.h"

namespace kestrune::windows {
namespace {

using presenters::ChannelMenuItems;
using presenters::GrabKill;

/// Text from outside, as an entry of a menu shows it unchanged.
QString Plain(std::string_view text) {
  return ToQt(base::DoubleAmpersands(base::OneLine(text)));
}

}  // namespace

RowMenu::RowMenu(presenters::ChannelMenu& rules, QWidget* parent) : QMenu(parent), rules_(rules) {
  setObjectName(QStringLiteral("mnuRow"));
}

QAction* RowMenu::Add(QMenu& menu, const char* name, const QString& text, std::function<void()> chosen) {
  QAction* action = menu.addAction(text);
  action->setObjectName(QLatin1String(name));
  connect(action, &QAction::triggered, this, [this, chosen = std::move(chosen)] {
    chosen();
    Chosen();
  });
  return action;
}

void RowMenu::Open(int gridRow, QPoint where) {
  const ChannelMenuItems items = rules_.ItemsOf(gridRow);
  if (items.Channel == 0) return;
  clear();
  const std::int16_t channel = items.Channel;
  QAction* tune = Add(*this, "mnuTune", tr("&Tune to %1").arg(Plain(items.Name)),
                      [this, channel] { rules_.Tune(channel); });
  tune->setEnabled(items.MayTune);
  setDefaultAction(tune);
  QAction* favourite =
      Add(*this, "mnuFavourite", tr("Fa&vourite"), [this, channel] { rules_.ToggleFavourite(channel); });
  favourite->setCheckable(true);
  favourite->setChecked(items.Favourite);
  AddPresets(items);
  addSeparator();
  AddLists(items, false);
  AddLists(items, true);
  addSeparator();
  Add(*this, "mnuHistory", tr("&History"), [this, channel] { rules_.ShowHistory(channel); });
  Add(*this, "mnuShowTuned", tr("&Show Tuned Channel\tCtrl+J"), [this] { ShowTuned(); });
  popup(where, tune);
}

void RowMenu::AddPresets(const ChannelMenuItems& items) {
  QMenu* presets = addMenu(tr("&Preset"));
  int index = 0;
  for (const ChannelMenuItems::Preset& preset : items.PresetButtons) {
    const std::string name = "mnuPreset_" + std::to_string(index);
    QAction* action =
        Add(*presets, name.c_str(), QStringLiteral("%1:  %2").arg(index + 1).arg(Plain(preset.Text)),
            [this, index, channel = items.Channel] { rules_.StorePreset(index, channel); });
    action->setCheckable(true);
    action->setChecked(preset.Chosen);
    ++index;
  }
}

void RowMenu::AddLists(const ChannelMenuItems& items, bool kill) {
  QMenu* list = addMenu(kill ? tr("&Kill") : tr("&Grab"));
  list->setEnabled(!items.Artist.empty() || !items.Song.empty());
  const auto offer = [&](GrabKill::Field field, const char* name, const QString& word,
                         const std::string& text) {
    if (text.empty()) return;
    Add(*list, name, QStringLiteral("%1 \"%2\"").arg(word, Plain(text)),
        [this, field, kill, text] { rules_.AddToList(field, kill, text); });
  };
  offer(GrabKill::Field::Artist, kill ? "mnuKillArtist" : "mnuGrabArtist", tr("&Artist"), items.Artist);
  offer(GrabKill::Field::Song, kill ? "mnuKillSong" : "mnuGrabSong", tr("&Song"), items.Song);
}

}  // namespace kestrune::windows
