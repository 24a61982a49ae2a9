#include "windows/ConfigPlace.h"

#include <QWidget>
#include <string_view>

#include "base/Ignored.h"
#include "windows/Placement.h"

namespace kestrune::windows {
namespace {

constexpr std::string_view kTop = "ConfigTop";
constexpr std::string_view kLeft = "ConfigLeft";

}  // namespace

void MoveToConfigPlace(QWidget& window, const config::SettingsSection& section) {
  if (section.Text(kTop, {}).empty() && section.Text(kLeft, {}).empty()) return;
  const Place present = PlaceOf(window);
  MoveTo(window, {.Top = section.Single(kTop, present.Top), .Left = section.Single(kLeft, present.Left)});
}

void SaveConfigPlace(const QWidget& window, const config::SettingsSection& section) {
  const Place place = PlaceOf(window);
  base::Ignored(section.SaveSingle(kTop, place.Top));
  base::Ignored(section.SaveSingle(kLeft, place.Left));
}

}  // namespace kestrune::windows
