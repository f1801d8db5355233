#pragma once

#include <windows.h>

#include <string>

#include "Keys.h"

namespace talu::drive {

// What an operator does with mouse and keyboard. Clicks and typing are posted, so they work with
// the screen locked or the window covered, and none of these waits for the work that it sets off.
// All raise std::runtime_error when the system refuses.

/// Leaves a message for `window`; no harm when it has just closed.
void Post(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

/// Presses and releases the left button in the middle of `control`.
void Click(HWND control);

/// Clicks into a text box and replaces all of its text (UTF-8).
void TypeText(HWND box, const std::string& text);

/// Asks a window to close, as its close box does.
void CloseByFrame(HWND window);

/// Brings `window` to the front; false while another program keeps it.
bool BringToFront(HWND window);

/// Presses one key (with its modifiers) on the real keyboard, for the window in front.
void Press(const Chord& chord);

/// Waits until the process of `window` has taken in what was done and come to rest, or is busy
/// with it for more than about two seconds.
void Settle(HWND window);

}  // namespace talu::drive
