#pragma once

#include <windows.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace talu::drive {

/// An open message box: a dialog of texts, an icon and one button.
struct MessageWindow {
  HWND Window = nullptr;
  HWND Button = nullptr;
  std::string Title;
  std::string Text;
};

/// An open window that is neither a page nor a dialog that a script can answer.
struct OtherWindow {
  std::string Title;
  std::string Class;
  /// What its controls read, one after the other.
  std::string Text;
  /// A dialog that stands there until somebody answers it, not one that shows how work goes on.
  bool Asks = false;
};

/// The running Setup.exe and its windows, looked at from outside. Setup may be busy for minutes
/// without answering; no call here waits longer than about half a second for it.
class SetupProcess {
 public:
  /// Starts `program`, in its own folder as a double click does. Raises std::runtime_error when it
  /// cannot be started.
  void Start(const std::string& program);
  /// Watches the process with this id. Raises std::runtime_error when there is none.
  void Attach(DWORD id);
  /// Attaches to the one process that shows a page of the wizard; false while there is none. Raises
  /// std::runtime_error when there are several.
  bool Find();

  bool Attached() const { return process_ != nullptr; }
  bool Ended() const;
  /// For a process that has ended.
  DWORD ExitCode() const;
  void Terminate();

  /// The visible page, or the one named `form`; null when it is not visible.
  HWND Page() const;
  HWND Page(const std::string& form) const;
  /// The number of the last showing of `form`, or of any page, hidden again or not: Setup counts
  /// the showings of all pages, from 1. 0 when there was none or this Setup does not count.
  int Showing(const std::string& form) const;
  int LastShowing() const;
  /// The page on which nothing more can happen: no procedure of Setup runs, no dialog is open,
  /// neither Next nor Back can be clicked. Null when there is none, or when this Setup does not
  /// report it.
  HWND StuckPage() const;
  /// "FrmType is shown", for messages.
  std::string PagesShown() const;
  /// The control of that name on a visible page, visible itself or not; null when there is none.
  HWND Control(const std::string& name) const;
  static HWND ControlOn(HWND page, const std::string& name);
  std::vector<MessageWindow> MessageWindows() const;
  /// The shell's dialog with the folder tree; null when it is not open.
  HWND FolderBrowser() const;
  std::vector<OtherWindow> OtherWindows() const;
  /// The dialog that stands before the page (a message box, the folder browser); null when none.
  HWND Dialog() const;
  /// The window that receives keys: the dialog or the page.
  HWND Front() const { return Dialog() != nullptr ? Dialog() : Page(); }

 private:
  struct Closer {
    void operator()(void* handle) const { CloseHandle(handle); }
  };

  std::vector<HWND> TopWindows() const;

  DWORD id_ = 0;
  std::unique_ptr<void, Closer> process_;
};

/// Sends a message that reads something; nothing when there is no answer within half a second.
std::optional<LRESULT> Ask(HWND window, UINT message, WPARAM wParam = 0, LPARAM lParam = 0);

/// Whether this session has a desktop, which windows need: a service's has none.
bool HasDesktop();

/// Whether the window is a masked box of which nobody outside Setup can know how much is in it: the
/// system does not say, and neither does Setup, as it does since it leaves that on the window.
bool HidesLength(HWND window);

/// What an operator reads in the window (one "*" a character of a masked box); nothing when Setup
/// does not answer.
std::optional<std::string> TextOf(HWND window);

/// Whether an option button is selected or a check box ticked.
std::optional<bool> ValueOf(HWND window);

/// The control's width in twips, as the wizard reports it.
int WidthOf(HWND window);

bool HasFocus(HWND window);
/// Whether the window or one in it has the focus. A page that has just come may not have it yet,
/// and keys would be lost.
bool HasFocusWithin(HWND window);

/// The tree in a folder browser, which newer systems nest in their own controls; null when `dialog`
/// is something else.
HWND FolderTree(HWND dialog);

}  // namespace talu::drive
