#include "FolderBrowser.h"

// Needs windows.h before it.
#include <commctrl.h>
#include <shellapi.h>
#include <shlobj.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <stdexcept>
#include <vector>

#include "Operator.h"
#include "SetupProcess.h"
#include "Text.h"

namespace talu::drive {

namespace {

/// An HTREEITEM, used as a plain number here; 0 is none.
using Node = LPARAM;

/// Thrown when Setup does not answer; SelectFolder turns it into its empty result.
struct Busy {};

/// How many of a folder's names an error message lists.
constexpr std::size_t kNamesTold = 20;

/// The tree, seen from another process. Sent messages only read it; everything that makes it work
/// is posted, because the shell cannot call its other components while it handles a message sent by
/// another process.
class Tree {
 public:
  explicit Tree(HWND window);
  ~Tree();
  Tree(const Tree&) = delete;
  Tree& operator=(const Tree&) = delete;

  Node Root() { return Next(TVGN_ROOT, 0); }
  Node Selected() { return Next(TVGN_CARET, 0); }
  std::vector<Node> Children(Node node);
  std::string Text(Node node);
  void Expand(Node node) { Do(TVM_EXPAND, TVE_EXPAND, node); }
  void Select(Node node) { Do(TVM_SELECTITEM, TVGN_CARET, node); }

 private:
  /// Filled by TVM_GETITEM. It must be in the memory of the tree's process; drive and Setup are
  /// both 32-bit programs, so its layout is the same in both.
  struct Record {
    TVITEMW Item;
    wchar_t Text[MAX_PATH];
  };
  struct Closer {
    void operator()(void* handle) const { CloseHandle(handle); }
  };

  LRESULT Get(UINT message, WPARAM wParam, LPARAM lParam) {
    const auto answer = Ask(window_, message, wParam, lParam);
    if (!answer) throw Busy();
    return *answer;
  }
  Node Next(WPARAM relation, Node node) { return Get(TVM_GETNEXTITEM, relation, node); }
  void Do(UINT message, WPARAM wParam, Node node) {
    Post(window_, message, wParam, node);
    Settle(window_);
  }

  HWND window_;
  std::unique_ptr<void, Closer> process_;
  Record* record_ = nullptr;  // in the other process
  bool recordLent_ = false;   // the tree may still write to it
};

Tree::Tree(HWND window) : window_(window) {
  DWORD id = 0;
  GetWindowThreadProcessId(window, &id);
  process_.reset(OpenProcess(PROCESS_VM_OPERATION | PROCESS_VM_READ | PROCESS_VM_WRITE, FALSE, id));
  if (process_) {
    record_ = static_cast<Record*>(
        VirtualAllocEx(process_.get(), nullptr, sizeof(Record), MEM_COMMIT, PAGE_READWRITE));
  }
  if (record_ == nullptr) {
    throw std::runtime_error("the folder browser cannot be read (error " +
                             std::to_string(GetLastError()) + ")");
  }
}

Tree::~Tree() {
  // A message that is no longer waited for is still handled some time.
  if (!recordLent_) VirtualFreeEx(process_.get(), record_, 0, MEM_RELEASE);
}

std::vector<Node> Tree::Children(Node node) {
  std::vector<Node> children;
  for (Node child = Next(TVGN_CHILD, node); child != 0; child = Next(TVGN_NEXT, child)) {
    children.push_back(child);
  }
  return children;
}

std::string Tree::Text(Node node) {
  TVITEMW item = {};
  item.mask = TVIF_TEXT;
  item.hItem = reinterpret_cast<HTREEITEM>(node);  // NOLINT(performance-no-int-to-ptr)
  item.pszText = record_->Text;
  item.cchTextMax = MAX_PATH;
  WriteProcessMemory(process_.get(), &record_->Item, &item, sizeof item, nullptr);
  recordLent_ = true;
  const bool known = Get(TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&record_->Item)) != 0;
  recordLent_ = false;
  if (!known) return {};  // gone since it was listed
  // The tree may have set the pointer to a text of its own, of any size: read it letter by letter.
  ReadProcessMemory(process_.get(), &record_->Item, &item, sizeof item, nullptr);
  std::wstring text;
  wchar_t letter = 0;
  while (text.size() < MAX_PATH &&
         ReadProcessMemory(process_.get(), item.pszText + text.size(), &letter, sizeof letter,
                           nullptr) &&
         letter != 0) {
    text += letter;
  }
  return Utf8(text);
}

/// The shell's name for a folder. Windows in other languages shows "Programme" for "C:\Program
/// Files", and the user may have renamed the computer's own folder.
std::string ShownName(const std::string& path) {
  SHFILEINFOW info = {};
  SHGetFileInfoW(Wide(path).c_str(), 0, &info, sizeof info, SHGFI_DISPLAYNAME);
  return Utf8(info.szDisplayName);
}

std::string ShownNameOfComputer() {
  LPITEMIDLIST computer = nullptr;
  if (FAILED(SHGetSpecialFolderLocation(nullptr, CSIDL_DRIVES, &computer))) return {};
  SHFILEINFOW info = {};
  SHGetFileInfoW(reinterpret_cast<const wchar_t*>(computer), 0, &info, sizeof info,
                 SHGFI_PIDL | SHGFI_DISPLAYNAME);
  CoTaskMemFree(computer);
  return Utf8(info.szDisplayName);
}

bool SameName(const std::string& one, const std::string& other) {
  return CompareStringOrdinal(Wide(one).c_str(), -1, Wide(other).c_str(), -1, TRUE) == CSTR_EQUAL;
}

/// One level on the way down the tree.
struct Stage {
  std::string Name;
  /// The shell's name for it, where that may differ.
  std::string Shown;
  /// The drive's letter is somewhere in its text: "Local Disk (C:)", "(C:) Local Disk".
  bool IsDrive = false;

  bool Is(const std::string& text) const {
    if (SameName(text, Name) || (!Shown.empty() && SameName(text, Shown))) return true;
    return IsDrive && text.find('(' + Name + ')') != std::string::npos;
  }
};

/// From the computer down to `folder`.
std::vector<Stage> WayTo(const std::string& folder) {
  const std::string computer = ShownNameOfComputer();
  std::string path{static_cast<char>(folder[0] & ~0x20), ':'};  // the letter in upper case
  std::vector<Stage> way = {{computer, "", false}, {path, ShownName(path + '\\'), true}};
  for (std::size_t at = 2; at < folder.size();) {
    const std::size_t end = std::min(folder.find('\\', at), folder.size());
    if (end > at) {
      const std::string name = folder.substr(at, end - at);
      path += '\\' + name;
      way.push_back({name, ShownName(path), false});
    }
    at = end + 1;
  }
  return way;
}

Node FindChild(Tree& tree, Node node, const Stage& stage) {
  for (const Node child : tree.Children(node)) {
    if (stage.Is(tree.Text(child))) return child;
  }
  return 0;
}

/// `"Program Files" has only "Common Files", "Internet Explorer"`
std::string Contents(Tree& tree, Node node) {
  const auto children = tree.Children(node);
  std::string text = Quoted(tree.Text(node)) + (children.empty() ? " is empty" : " has only ");
  for (std::size_t i = 0; i < children.size() && i < kNamesTold; ++i) {
    text += (i == 0 ? "" : ", ") + Quoted(tree.Text(children[i]));
  }
  if (children.size() > kNamesTold) {
    text += " and " + std::to_string(children.size() - kNamesTold) + " more";
  }
  return text;
}

std::string Select(Tree& tree, HWND dialog, const std::string& folder) {
  Node node = tree.Root();
  for (const Stage& stage : WayTo(folder)) {
    Node child = FindChild(tree, node, stage);
    if (child == 0) {
      tree.Expand(node);
      child = FindChild(tree, node, stage);
    }
    // The whole path is reported, not its missing part, so that a secret in it is recognised.
    if (child == 0) return Quoted(folder) + " is not in the tree: " + Contents(tree, node);
    node = child;
  }
  if (tree.Selected() != node) tree.Select(node);
  if (tree.Selected() != node) return Quoted(folder) + " cannot be selected";
  return IsWindowEnabled(GetDlgItem(dialog, IDOK)) ? "" : "its OK is disabled";
}

}  // namespace

std::optional<std::string> SelectFolder(HWND dialog, const std::string& folder) {
  Tree tree(FolderTree(dialog));
  try {
    return Select(tree, dialog, folder);
  } catch (const Busy&) {
    return std::nullopt;
  }
}

}  // namespace talu::drive
