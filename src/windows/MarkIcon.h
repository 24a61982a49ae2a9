#pragma once

#include <QColor>
#include <QIcon>

namespace kestrune::windows {

/// The marks that everybody knows: record and stop of a tape deck, a bookmark, and a closed padlock.
enum class Mark { Disc, Square, Ribbon, Padlock };

[[nodiscard]] QIcon MarkIcon(Mark mark, const QColor& colour);

}  // namespace kestrune::windows
