#pragma once

#include <QImage>
#include <QStringList>
#include <QWidget>

namespace kestrune::test {

/// The texts of a window that most people could not read, each with its contrast, judged by the picture alone: of the place where
/// a text stands, the most frequent colour against the one that differs most from it. Disabled widgets may be faint.
[[nodiscard]] QStringList FaintTexts(const QWidget& window, const QImage& picture);

}  // namespace kestrune::test
