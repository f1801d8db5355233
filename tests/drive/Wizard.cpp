// A wizard of three pages that does what drive has to cope with: controls that appear or are
// enabled late, a message box, the folder browser, windows that no script knows, work without
// answering, a masked box, an end by the frame.
#include <windows.h>
// After windows.h.
#include <shlobj.h>

#include <cstdlib>
#include <map>
#include <string>

namespace {

struct Form {
  const char* Name;
  HWND Window = nullptr;
  std::map<std::string, HWND> Controls{};
};

Form type{"FrmType"};
Form location{"FrmLocation"};
Form database{"FrmSQLNonQuery"};
Form application{"FrmApplication"};
HWND shown = nullptr;
int nextId = 100;
int showings = 0;
/// A wizard that does not tell how often its pages were shown, nor whether it works.
const bool kSilent = getenv("SILENT_WIZARD") != nullptr;
/// One on a system that tells nobody outside how much a masked box has in it.
const bool kSecretive = getenv("SECRETIVE_WIZARD") != nullptr;
WNDPROC boxProcedure = nullptr;

/// Properties and control ids are numbers that travel as handles.
template <class Handle>
Handle As(INT_PTR number) {
  return reinterpret_cast<Handle>(number);  // NOLINT(performance-no-int-to-ptr)
}

void Add(Form& form, const char* name, const char* kind, const char* text, DWORD style, int x,
         int y, int width = 200) {
  const HWND control = CreateWindowA(kind, text, WS_CHILD | style, x, y, width, 24, form.Window,
                                     As<HMENU>(nextId++), nullptr, nullptr);
  SetPropA(control, name, As<HANDLE>(1));
  SetPropA(control, "Width", As<HANDLE>(width * 15));
  form.Controls[name] = control;
}

std::string Read(Form& form, const char* name) {
  char text[300] = "";
  GetWindowTextA(form.Controls[name], text, 300);
  return text;
}

void MarkBusy(bool busy) {
  if (kSilent) return;
  if (busy) {
    SetPropA(shown, "Busy", As<HANDLE>(1));
  } else {
    RemovePropA(shown, "Busy");
  }
}

void Show(Form& form, Form* from) {
  if (!kSilent) SetPropA(form.Window, "Busy", As<HANDLE>(1));
  if (!kSilent) SetPropA(form.Window, "Shown", As<HANDLE>(++showings));
  if (from != nullptr) ShowWindow(from->Window, SW_HIDE);
  ShowWindow(form.Window, SW_SHOW);
  shown = form.Window;
  if (&form == &application) SetTimer(form.Window, 1, 700, nullptr);
}

void ChooseFolder() {
  BROWSEINFOA request = {};
  request.hwndOwner = location.Window;
  request.lpszTitle = "Select a folder";
  request.ulFlags = BIF_RETURNONLYFSDIRS;
  const LPITEMIDLIST chosen = SHBrowseForFolderA(&request);
  char path[MAX_PATH] = "none";
  if (chosen != nullptr) SHGetPathFromIDListA(chosen, path);
  CoTaskMemFree(chosen);
  SetWindowTextA(location.Controls["TxtInstaPath"], path);
}

void WorkAndAnswer() {
  MSG message;
  for (int i = 0; i < 100; ++i) {
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageA(&message);
    Sleep(15);
  }
}

void Clicked(HWND control) {
  if (control == type.Controls["OptUpgrade"]) ShowWindow(type.Controls["ChkOldLocation"], SW_SHOW);
  if (control == type.Controls["CmdNext"]) Show(location, &type);
  if (control == location.Controls["CmdLocation"]) ChooseFolder();
  if (control == location.Controls["CmdPrev"]) Show(type, &location);
  if (control == application.Controls["CmdNext"]) ExitProcess(7);
  if (control != location.Controls["CmdNext"]) return;
  if (Read(location, "TxtInstaPath") == "C:\\In use") {
    SetWindowTextA(location.Controls["LblMsg"], "Please\rchoose \"again\"");
    MessageBoxA(location.Window, "Location in use,\r\nPlease select another", "Wizard", MB_OK);
  } else if (Read(location, "TxtPsWord") == "s3cret") {
    EnableWindow(control, FALSE);
    Sleep(3000);  // work that lets nothing through
    Show(database, &location);
    Show(application, &database);
  } else if (Read(location, "TxtInstaPath") == "C:\\Asking") {
    MessageBoxA(location.Window, "Replace it?", "Copying", MB_YESNO);
  } else if (Read(location, "TxtInstaPath") == "C:\\Showing") {
    const HWND window = CreateWindowA("page", "Copying", WS_POPUP | WS_VISIBLE, 0, 0, 300, 90,
                                      location.Window, nullptr, nullptr, nullptr);
    CreateWindowA("STATIC", "Big.dat", WS_CHILD | WS_VISIBLE, 9, 9, 90, 20, window, nullptr,
                  nullptr, nullptr);
    CreateWindowA("EDIT", "typed", WS_CHILD | WS_VISIBLE, 9, 40, 90, 20, window, nullptr, nullptr,
                  nullptr);
  } else if (Read(location, "TxtInstaPath") == "C:\\Malformed") {
    Show(database, &location);
    WorkAndAnswer();  // nothing can be clicked, and yet more is to come
    SetWindowTextA(database.Controls["LblMsg"], "Script \"format\"....");
  }
}

LRESULT CALLBACK TellNoLength(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_GETTEXTLENGTH) return 0;
  return CallWindowProcA(boxProcedure, window, message, wParam, lParam);
}

void Changed() {
  if (!kSilent) {
    SetPropA(location.Controls["TxtPsWord"], "Typed",
             As<HANDLE>(static_cast<INT_PTR>(Read(location, "TxtPsWord").size() + 1)));
  }
  EnableWindow(location.Controls["CmdNext"], !Read(location, "TxtInstaPath").empty());
}

LRESULT CALLBACK Handle(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_CLOSE) ExitProcess(9);
  if (message == WM_COMMAND && HIWORD(wParam) == EN_CHANGE) Changed();
  if (message == WM_COMMAND && HIWORD(wParam) == BN_CLICKED) {
    MarkBusy(true);
    Clicked(As<HWND>(lParam));
    // The last page works until its timer has come.
    if (shown != application.Window) MarkBusy(false);
  }
  if (message == WM_LBUTTONUP && window == type.Window)
    SetWindowTextA(type.Controls["LblMsg"], "through");
  if (message == WM_TIMER) {
    KillTimer(window, 1);
    SetPropA(application.Controls["ShpProgBar"], "Width", As<HANDLE>(7325));
    EnableWindow(application.Controls["CmdNext"], TRUE);
    MarkBusy(false);
  }
  return DefWindowProcA(window, message, wParam, lParam);
}

void Make(Form& form) {
  form.Window = CreateWindowExA(WS_EX_CONTROLPARENT, "page", "Wizard",
                                WS_OVERLAPPED | WS_CAPTION | WS_SYSMENU, 200, 150, 520, 360,
                                nullptr, nullptr, nullptr, nullptr);
  SetPropA(form.Window, form.Name, As<HANDLE>(1));
  Add(form, "LblMsg", "STATIC", "", WS_VISIBLE, 20, 20);
}

}  // namespace

int main() {
  CoInitialize(nullptr);
  WNDCLASSA page = {};
  page.lpfnWndProc = Handle;
  page.hbrBackground = CreateHatchBrush(HS_DIAGCROSS, RGB(0, 90, 200));
  page.hCursor = LoadCursor(nullptr, IDC_ARROW);
  page.lpszClassName = "page";
  RegisterClassA(&page);
  const DWORD button = WS_VISIBLE | WS_TABSTOP;
  Make(type);
  Add(type, "OptFresh", "BUTTON", "Fresh", button | BS_AUTORADIOBUTTON | WS_GROUP, 20, 60);
  Add(type, "OptUpgrade", "BUTTON", "Upgrade", button | BS_AUTORADIOBUTTON, 20, 90);
  Add(type, "ChkOldLocation", "BUTTON", "Old", WS_TABSTOP | BS_AUTOCHECKBOX | WS_GROUP, 20, 120);
  Add(type, "CmdNext", "BUTTON", "&Next", button, 280, 280);
  char folder[MAX_PATH] = "";
  GetCurrentDirectoryA(MAX_PATH, folder);
  Add(type, "LblTitleMsg", "STATIC", folder, WS_VISIBLE, 20, 200, 480);
  Make(location);
  Add(location, "TxtInstaPath", "EDIT", "", button | WS_BORDER | ES_AUTOHSCROLL, 20, 60);
  Add(location, "CmdLocation", "BUTTON", "...", button, 240, 60, 30);
  Add(location, "TxtPsWord", "EDIT", "old", button | WS_BORDER | ES_PASSWORD, 20, 90);
  if (kSecretive) {
    boxProcedure = reinterpret_cast<WNDPROC>(SetWindowLongPtrA(
        location.Controls["TxtPsWord"], GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(TellNoLength)));
  }
  Add(location, "CmdPrev", "BUTTON", "&Back", button, 20, 280);
  Add(location, "CmdNext", "BUTTON", "&Next", button | WS_DISABLED, 280, 280);
  Make(database);
  Add(database, "CmdPrev", "BUTTON", "&Back", button | WS_DISABLED, 20, 280);
  Add(database, "CmdNext", "BUTTON", "&Next", button | WS_DISABLED, 280, 280);
  Make(application);
  Add(application, "ShpProgBar", "STATIC", "", WS_VISIBLE, 20, 60, 97);
  Add(application, "CmdNext", "BUTTON", "&Finish", button | WS_DISABLED, 280, 280);
  SendMessageA(type.Controls["OptFresh"], BM_SETCHECK, BST_CHECKED, 0);
  Sleep(500);
  Show(type, nullptr);
  SetFocus(type.Controls["OptFresh"]);
  MarkBusy(false);
  MSG message;
  while (GetMessageA(&message, nullptr, 0, 0) > 0) {
    if (message.message == WM_SYSCOMMAND) Sleep(700);  // the machine has more to do
    if (IsDialogMessageA(shown, &message)) continue;
    TranslateMessage(&message);
    DispatchMessageA(&message);
  }
  return 0;
}
