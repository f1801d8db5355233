#pragma once

#include <windows.h>

#include <string>

#include "Keys.h"

namespace talu::drive {

// What an operator does with mouse and keyboard. Clicks and typing are posted, so they work with
// the screen locked or the window covered, and none of them waits for the work that it starts. All
// raise std::runtime_error when the system refuses.

/// Posts a message to `window`; a window that has just closed is no error.
void Post(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

/// Presses and releases the left button in the middle of `control`.
void Click(HWND control);

/// Clicks into a text box and replaces all of its text (UTF-8).
void TypeText(HWND box, const std::string& text);

/// Asks a window to close, as its close box does.
void CloseByFrame(HWND window);

/// Brings `window` to the front; false while another program prevents it.
bool BringToFront(HWND window);

/// Presses one key (with its modifiers) on the real keyboard, for the window in front.
void Press(const Chord& chord);

/// Waits until the process of `window` has handled the input and is idle, or for about two seconds
/// while it is busy.
void Settle(HWND window);

}  // namespace talu::drive
