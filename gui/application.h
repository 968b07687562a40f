#pragma once
// Names the window shows for itself.

namespace korvatek::gui {

// The window's caption and the title of message boxes that are given none.
inline constexpr const char* kApplicationName = "Korvatek";

}  // namespace korvatek::gui
