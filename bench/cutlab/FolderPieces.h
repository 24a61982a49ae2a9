#pragma once

#include <string>
#include <vector>

#include "cutlab/Pieces.h"

namespace kestrune::cutlab {

/// The music and the voices that fetch-music has put into a folder. What cannot be read is silent.
class FolderPieces final : public Pieces {
 public:
  explicit FolderPieces(const std::string& folder);

  [[nodiscard]] std::size_t Count() const override { return names_.size(); }
  [[nodiscard]] Piece Music(std::size_t index) override;
  [[nodiscard]] std::vector<float> Voice(receiver::Dice& dice) override;

 private:
  std::vector<std::string> names_;   ///< paths without ".head.wav"
  std::vector<std::string> voices_;  ///< paths
};

}  // namespace kestrune::cutlab
