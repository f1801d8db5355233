// An add-on with a window and an exit code of its own: looks for a label printer, finds none.
#include <windows.h>

namespace {

constexpr DWORD kSearchMilliseconds = 1500;
constexpr int kNoPrinterFound = 7;

void ShowMessagesUntil(ULONGLONG end) {
  for (ULONGLONG now = GetTickCount64(); now < end; now = GetTickCount64()) {
    MsgWaitForMultipleObjects(0, nullptr, FALSE, static_cast<DWORD>(end - now), QS_ALLINPUT);
    MSG message;
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageA(&message);
  }
}

}  // namespace

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int) {
  const ULONGLONG end = GetTickCount64() + kSearchMilliseconds;
  // A static control stands by itself as a window; it needs no class of its own.
  CreateWindowExA(WS_EX_DLGMODALFRAME, "STATIC", "Looking for a label printer ...",
                  WS_POPUP | WS_CAPTION | WS_VISIBLE | SS_CENTER | SS_CENTERIMAGE, 300, 300, 320,
                  110, nullptr, nullptr, nullptr, nullptr);
  ShowMessagesUntil(end);
  return kNoPrinterFound;
}
