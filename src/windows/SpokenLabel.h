#pragma once

namespace kestrune::windows {

/// Makes screen readers say of each ElidedLabel what it is and what it shows, for example "Artist: Abigail Wren", and of one
/// that can be activated that it is a button, which they can press. For the main thread; more than one call
/// changes nothing.
void SpeakElidedLabels();

}  // namespace kestrune::windows
