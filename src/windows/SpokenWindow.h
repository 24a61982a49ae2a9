#pragma once

namespace kestrune::windows {

/// From the first call on a screen reader takes each window of the program for a window, and not for a part of one, the
/// display of the level for a picture, and can toggle check boxes and radio buttons. Called before the first window is
/// created.
void SpeakWindows();

}  // namespace kestrune::windows
