#include "SetupProcess.h"

#include <algorithm>
#include <filesystem>
#include <functional>
#include <set>
#include <stdexcept>
#include <system_error>

#include "Script.h"
#include "Text.h"

namespace talu::drive {

namespace {

constexpr UINT kAnswerTime = 500;  // milliseconds
/// The error of starting a program that needs an administrator as anyone else; the compiler's
/// headers have no name for it.
constexpr DWORD kElevationRequired = 740;
// Setup's properties of a page's window: the number of its last showing, and whether it is busy.
constexpr const char* kShown = "Shown";
constexpr const char* kBusy = "Busy";
/// And on a masked box: one more than the number of characters in it.
constexpr const char* kTyped = "Typed";
/// The most of a strange window's texts that a message has.
constexpr int kTextTold = 300;

using Visitor = std::function<void(HWND)>;

BOOL CALLBACK Visit(HWND window, LPARAM visitor) {
  // The pointer comes back as the number that EnumWindows passes on.
  (*reinterpret_cast<const Visitor*>(visitor))(window);  // NOLINT(performance-no-int-to-ptr)
  return TRUE;
}

void ForEachTopWindow(const Visitor& visitor) {
  EnumWindows(Visit, reinterpret_cast<LPARAM>(&visitor));
}

void ForEachChild(HWND window, const Visitor& visitor) {
  EnumChildWindows(window, Visit, reinterpret_cast<LPARAM>(&visitor));
}

int PropertyOf(HWND window, const std::string& name) {
  return static_cast<int>(reinterpret_cast<INT_PTR>(GetPropW(window, Wide(name).c_str())));
}

bool HasProperty(HWND window, const std::string& name) {
  return PropertyOf(window, name) != 0;
}

std::string FormOf(HWND window) {
  for (const std::string& form : FormNames()) {
    if (HasProperty(window, form)) return form;
  }
  return {};
}

DWORD OwnerOf(HWND window) {
  DWORD id = 0;
  GetWindowThreadProcessId(window, &id);
  return id;
}

std::wstring ClassOf(HWND window) {
  wchar_t name[64] = L"";
  GetClassNameW(window, name, 64);
  return name;
}

bool IsDialog(HWND window) {
  return ClassOf(window) == L"#32770";
}

bool HasStyle(HWND window, LONG style) {
  return (GetWindowLongW(window, GWL_STYLE) & style) != 0;
}

std::optional<MessageWindow> AsMessage(HWND window) {
  MessageWindow message;
  message.Window = window;
  int buttons = 0;
  int others = 0;
  ForEachChild(window, [&](HWND child) {
    if (!HasStyle(child, WS_VISIBLE)) return;
    const std::wstring name = ClassOf(child);
    if (name == L"Button") {
      message.Button = child;
      ++buttons;
    } else if (name != L"Static") {
      ++others;
    } else if (const auto text = TextOf(child); text && !text->empty()) {
      message.Text = *text;
    }
  });
  if (buttons != 1 || others != 0) return std::nullopt;
  message.Title = TextOf(window).value_or("");
  return message;
}

bool IsMasked(HWND window) {
  return ClassOf(window) == L"Edit" && HasStyle(window, ES_PASSWORD);
}

/// Help that comes and goes with the pointer, and what the system keeps for typing.
bool IsInNobodysWay(HWND window) {
  const std::wstring name = ClassOf(window);
  RECT area = {};
  GetWindowRect(window, &area);
  return IsRectEmpty(&area) || name == L"tooltips_class32" || name == L"IME" ||
         name == L"MSCTFIME UI";
}

/// What the system keeps of a window's text: asked of no busy Setup, and nothing that was typed.
std::string KeptText(HWND window) {
  wchar_t text[kTextTold] = L"";
  return Utf8({text, static_cast<std::size_t>(InternalGetWindowText(window, text, kTextTold))});
}

OtherWindow AsOther(HWND window) {
  OtherWindow other{KeptText(window), Utf8(ClassOf(window)), "", IsDialog(window)};
  ForEachChild(window, [&](HWND child) {
    if (!IsWindowVisible(child)) return;
    if (ClassOf(child) == L"msctls_progress32") other.Asks = false;
    const std::string text = KeptText(child);
    if (text.empty() || other.Text.size() + text.size() > std::size_t{kTextTold}) return;
    other.Text += (other.Text.empty() ? "" : " / ") + text;
  });
  return other;
}

/// The window with the focus in the thread of `window`; null without one.
HWND FocusBeside(HWND window) {
  GUITHREADINFO info = {};
  info.cbSize = sizeof info;
  const DWORD thread = GetWindowThreadProcessId(window, nullptr);
  return GetGUIThreadInfo(thread, &info) ? info.hwndFocus : nullptr;
}

}  // namespace

void SetupProcess::Start(const std::string& program) {
  std::error_code ignored;  // what is not in this folder is looked for as the system does
  std::filesystem::path path(Wide(program));
  if (std::filesystem::exists(path, ignored)) path = std::filesystem::absolute(path, ignored);
  const std::wstring folder = path.parent_path().native();
  std::wstring command = L"\"" + path.native() + L"\"";
  STARTUPINFOW startup = {};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION info = {};
  if (!CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr,
                      folder.empty() ? nullptr : folder.c_str(), &startup, &info)) {
    const DWORD error = GetLastError();
    throw std::runtime_error("cannot start " + Quoted(program) +
                             (error == kElevationRequired
                                  ? ": it needs an administrator, start drive as one"
                                  : " (error " + std::to_string(error) + ")"));
  }
  CloseHandle(info.hThread);
  process_.reset(info.hProcess);
  id_ = info.dwProcessId;
}

void SetupProcess::Attach(DWORD id) {
  process_.reset(
      OpenProcess(SYNCHRONIZE | PROCESS_QUERY_INFORMATION | PROCESS_TERMINATE, FALSE, id));
  if (!process_) throw std::runtime_error("cannot watch process " + std::to_string(id));
  id_ = id;
}

bool SetupProcess::Find() {
  std::set<DWORD> owners;
  ForEachTopWindow([&](HWND window) {
    if (IsWindowVisible(window) && !FormOf(window).empty()) owners.insert(OwnerOf(window));
  });
  if (owners.empty()) return false;
  if (owners.size() > 1) {
    std::string ids;
    for (const DWORD id : owners) ids += " " + std::to_string(id);
    throw std::runtime_error("several wizards are open, choose one with --pid:" + ids);
  }
  Attach(*owners.begin());
  return true;
}

bool SetupProcess::Ended() const {
  return process_ && WaitForSingleObject(process_.get(), 0) == WAIT_OBJECT_0;
}

DWORD SetupProcess::ExitCode() const {
  DWORD code = 0;
  GetExitCodeProcess(process_.get(), &code);
  return code;
}

void SetupProcess::Terminate() {
  if (process_) TerminateProcess(process_.get(), 1);
}

std::vector<HWND> SetupProcess::TopWindows() const {
  std::vector<HWND> windows;
  ForEachTopWindow([&](HWND window) {
    if (IsWindowVisible(window) && OwnerOf(window) == id_) windows.push_back(window);
  });
  return windows;
}

HWND SetupProcess::Page() const {
  for (HWND window : TopWindows()) {
    if (!FormOf(window).empty()) return window;
  }
  return nullptr;
}

HWND SetupProcess::Page(const std::string& form) const {
  for (HWND window : TopWindows()) {
    if (HasProperty(window, form)) return window;
  }
  return nullptr;
}

std::string SetupProcess::PagesShown() const {
  std::string pages;
  for (HWND window : TopWindows()) {
    const std::string form = FormOf(window);
    if (!form.empty()) pages += (pages.empty() ? "" : " and ") + form;
  }
  return pages.empty() ? "no page is shown" : pages + " is shown";
}

int SetupProcess::Showing(const std::string& form) const {
  int number = 0;
  ForEachTopWindow([&](HWND window) {
    if (OwnerOf(window) == id_ && HasProperty(window, form)) number = PropertyOf(window, kShown);
  });
  return number;
}

int SetupProcess::LastShowing() const {
  int last = 0;
  ForEachTopWindow([&](HWND window) {
    if (OwnerOf(window) == id_) last = std::max(last, PropertyOf(window, kShown));
  });
  return last;
}

HWND SetupProcess::StuckPage() const {
  const HWND page = Page();
  if (page == nullptr || !HasProperty(page, kShown) || Dialog() != nullptr) return nullptr;
  const HWND next = ControlOn(page, "CmdNext");
  const HWND back = ControlOn(page, "CmdPrev");
  if (IsWindowEnabled(next) || IsWindowEnabled(back)) return nullptr;
  // Read after the buttons: a procedure that disables them only for its time is still running.
  const bool busy = HasProperty(page, kBusy);
  // And last, whether the page existed all the time: one that is being closed has none of this.
  const bool whole = IsWindow(next) && (back == nullptr || IsWindow(back)) && IsWindow(page);
  return whole && !busy ? page : nullptr;
}

HWND SetupProcess::Control(const std::string& name) const {
  for (HWND window : TopWindows()) {
    if (FormOf(window).empty()) continue;
    if (const HWND control = ControlOn(window, name)) return control;
  }
  return nullptr;
}

HWND SetupProcess::ControlOn(HWND page, const std::string& name) {
  HWND found = nullptr;
  ForEachChild(page, [&](HWND child) {
    if (found == nullptr && HasProperty(child, name)) found = child;
  });
  return found;
}

std::vector<MessageWindow> SetupProcess::MessageWindows() const {
  std::vector<MessageWindow> messages;
  for (HWND window : TopWindows()) {
    if (!IsDialog(window)) continue;
    if (const auto message = AsMessage(window)) messages.push_back(*message);
  }
  return messages;
}

HWND SetupProcess::FolderBrowser() const {
  for (HWND window : TopWindows()) {
    if (IsDialog(window) && FolderTree(window) != nullptr) return window;
  }
  return nullptr;
}

std::vector<OtherWindow> SetupProcess::OtherWindows() const {
  std::vector<OtherWindow> others;
  for (HWND window : TopWindows()) {
    const bool known = !FormOf(window).empty() || IsInNobodysWay(window) ||
                       (IsDialog(window) && (AsMessage(window) || FolderTree(window) != nullptr));
    if (!known) others.push_back(AsOther(window));
  }
  return others;
}

HWND SetupProcess::Dialog() const {
  const auto windows = TopWindows();
  const auto dialog = std::find_if(windows.begin(), windows.end(), IsDialog);
  return dialog == windows.end() ? nullptr : *dialog;
}

std::optional<LRESULT> Ask(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  DWORD_PTR answer = 0;
  if (SendMessageTimeoutW(window, message, wParam, lParam, SMTO_ABORTIFHUNG, kAnswerTime,
                          &answer) == 0) {
    return std::nullopt;
  }
  return static_cast<LRESULT>(answer);
}

bool HasDesktop() {
  USEROBJECTFLAGS station = {};
  DWORD size = 0;
  return GetUserObjectInformationW(GetProcessWindowStation(), UOI_FLAGS, &station, sizeof station,
                                   &size) &&
         (station.dwFlags & WSF_VISIBLE) != 0;
}

bool HidesLength(HWND window) {
  return IsMasked(window) && !HasProperty(window, kTyped) &&
         Ask(window, WM_GETTEXTLENGTH).value_or(1) == 0;
}

std::optional<std::string> TextOf(HWND window) {
  // Another process cannot read a masked box, nor should it.
  const bool masked = IsMasked(window);
  if (const int typed = PropertyOf(window, kTyped); masked && typed > 0) {
    return std::string(static_cast<std::size_t>(typed - 1), '*');
  }
  const auto length = Ask(window, WM_GETTEXTLENGTH);
  if (!length) return std::nullopt;
  const auto size = static_cast<std::size_t>(*length);
  if (masked) return std::string(size, '*');
  std::wstring text(size + 1, L'\0');
  const auto got = Ask(window, WM_GETTEXT, size + 1, reinterpret_cast<LPARAM>(text.data()));
  if (!got) return std::nullopt;
  text.resize(static_cast<std::size_t>(*got));
  return Utf8(text);
}

std::optional<bool> ValueOf(HWND window) {
  const auto check = Ask(window, BM_GETCHECK);
  return check ? std::optional(*check == BST_CHECKED) : std::nullopt;
}

int WidthOf(HWND window) {
  return PropertyOf(window, "Width");
}

bool HasFocus(HWND window) {
  return FocusBeside(window) == window;
}

bool HasFocusWithin(HWND window) {
  const HWND focus = FocusBeside(window);
  return focus == window || IsChild(window, focus);
}

HWND FolderTree(HWND dialog) {
  HWND tree = nullptr;
  ForEachChild(dialog, [&](HWND child) {
    if (tree == nullptr && ClassOf(child) == L"SysTreeView32") tree = child;
  });
  return tree;
}

}  // namespace talu::drive
