#pragma once

#include <memory>
#include <string>

#include "cutlab/FolderPieces.h"

namespace kestrune::cutlab {

/// The pieces of a folder, or made ones if it is called "synthetic". Nothing if there are none.
[[nodiscard]] inline std::unique_ptr<Pieces> OpenPieces(const std::string& folder, std::uint64_t seed) {
  if (folder == "synthetic") return std::make_unique<SyntheticPieces>(seed, 60);
  auto pieces = std::make_unique<FolderPieces>(folder);
  if (pieces->Count() == 0) return nullptr;
  return pieces;
}

}  // namespace kestrune::cutlab
