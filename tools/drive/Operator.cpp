#include "Operator.h"

#include <stdexcept>
#include <vector>

#include "SetupProcess.h"
#include "Text.h"

namespace talu::drive {

namespace {

LPARAM AsParameter(POINT point) {
  return MAKELPARAM(point.x, point.y);
}

INPUT KeyInput(unsigned short key, bool up) {
  INPUT input = {};
  input.type = INPUT_KEYBOARD;
  input.ki.wVk = key;
  input.ki.wScan = static_cast<WORD>(MapVirtualKeyW(key, MAPVK_VK_TO_VSC));
  // The keys between letters and number pad: from page up to down arrow, and delete.
  const bool extended = (key >= VK_PRIOR && key <= VK_DOWN) || key == VK_DELETE;
  input.ki.dwFlags = (extended ? KEYEVENTF_EXTENDEDKEY : 0U) | (up ? KEYEVENTF_KEYUP : 0U);
  return input;
}

void Rest(HWND window) {
  for (int i = 0; i < 4 && IsWindow(window) && !Ask(window, WM_NULL); ++i) {
  }
}

}  // namespace

void Post(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (PostMessageW(window, message, wParam, lParam)) return;
  const DWORD error = GetLastError();
  // The window may have just closed; the following steps will show it.
  if (error == ERROR_INVALID_WINDOW_HANDLE) return;
  throw std::runtime_error(error == ERROR_ACCESS_DENIED
                               ? "Setup runs as administrator, start drive as administrator too"
                               : "input refused (error " + std::to_string(error) + ")");
}

void Click(HWND control) {
  RECT area = {};
  GetClientRect(control, &area);
  POINT middle = {area.right / 2, area.bottom / 2};
  HWND target = control;
  // As with a real mouse, a label that ignores the click lets it through to the page.
  POINT onScreen = middle;
  ClientToScreen(control, &onScreen);
  if (Ask(control, WM_NCHITTEST, 0, AsParameter(onScreen)) == HTTRANSPARENT) {
    target = GetAncestor(control, GA_PARENT);
    middle = onScreen;
    ScreenToClient(target, &middle);
  }
  Post(target, WM_LBUTTONDOWN, MK_LBUTTON, AsParameter(middle));
  Post(target, WM_LBUTTONUP, 0, AsParameter(middle));
}

void TypeText(HWND box, const std::string& text) {
  Click(box);
  Post(box, EM_SETSEL, 0, -1);
  if (text.empty()) Post(box, WM_CHAR, VK_BACK, 1);
  for (const wchar_t c : Wide(text)) Post(box, WM_CHAR, c, 1);
}

void CloseByFrame(HWND window) {
  Post(window, WM_SYSCOMMAND, SC_CLOSE, 0);
}

bool BringToFront(HWND window) {
  if (GetForegroundWindow() != window) SetForegroundWindow(window);
  return GetForegroundWindow() == window;
}

void Press(const Chord& chord) {
  std::vector<INPUT> inputs;
  for (auto key = chord.begin(); key != chord.end(); ++key) inputs.push_back(KeyInput(*key, false));
  for (auto key = chord.rbegin(); key != chord.rend(); ++key)
    inputs.push_back(KeyInput(*key, true));
  const auto count = static_cast<UINT>(inputs.size());
  if (SendInput(count, inputs.data(), sizeof(INPUT)) != count) {
    throw std::runtime_error("the keyboard is refused (error " + std::to_string(GetLastError()) +
                             ")");
  }
}

void Settle(HWND window) {
  // Setup handles sent messages before posted ones: the first answer means that it is in its
  // message loop, where it gets the input next; the second, that it has handled the input.
  Rest(window);
  Sleep(50);
  Rest(window);
}

}  // namespace talu::drive
