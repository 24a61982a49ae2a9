#pragma once

#include <QComboBox>
#include <functional>

#include "presenters/ChoiceList.h"

class QSlider;
class QWidget;

/// Lists and sliders of the configuration and its option windows.
namespace kestrune::windows {

/// A list that shows as much of a long choice as it has room for, and says that there is more.
class ElidedList final : public QComboBox {
 public:
  using QComboBox::QComboBox;

 protected:
  void paintEvent(QPaintEvent* event) override;
};

/// Shows rows and choice, without the list's signals.
void ShowChoices(QComboBox& list, const presenters::ChoiceList& choices);

/// The list keeps its width, however long a row is, and turns by the mouse wheel only once it has the focus.
void Restrain(QComboBox& list, int characters);

/// A position below the slider's least shows at its least.
void ShowPosition(QSlider& slider, int position);

/// Calls `moved` for what the user does with the slider, also for the choice of the position that it already
/// shows: that position need not be the rules' own.
void OnMoved(QSlider& slider, const std::function<void(int position)>& moved);

/// While hidden, the widget's place stays free: nothing jumps.
void KeepRoom(QWidget& widget);

}  // namespace kestrune::windows
