#pragma once

#include <QComboBox>
#include <functional>

#include "presenters/ChoiceList.h"

class QSlider;
class QWidget;

/// Lists and sliders of the configuration and its option windows.
namespace kestrune::windows {

/// A list that elides a choice too long for it.
class ElidedList final : public QComboBox {
 public:
  using QComboBox::QComboBox;

 protected:
  void paintEvent(QPaintEvent* event) override;
};

/// Shows the rows and the choice without emitting the list's signals.
void ShowChoices(QComboBox& list, const presenters::ChoiceList& choices);

/// The list keeps its width however long a row is, and reacts to the mouse wheel only while it has the focus.
void Restrain(QComboBox& list, int characters);

/// A position below the slider's minimum is shown at the minimum.
void ShowPosition(QSlider& slider, int position);

/// Calls `moved` whenever the user sets the slider, even to the position that it already shows: the rules may
/// hold another one.
void OnMoved(QSlider& slider, const std::function<void(int position)>& moved);

/// A hidden widget keeps its space, so that nothing moves.
void KeepRoom(QWidget& widget);

}  // namespace kestrune::windows
