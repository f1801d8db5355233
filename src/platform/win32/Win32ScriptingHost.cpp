#include "platform/win32/Win32ScriptingHost.h"

#include <optional>
#include <utility>

#include "platform/CodePage.h"
#include "platform/win32/LateBound.h"
#include "platform/win32/ShellShortcut.h"
#include "platform/win32/Text.h"
#include "runtime/RuntimeError.h"

namespace talu {
namespace {

/// The folders of the host's collection, in its order.
constexpr int kSpecialFolders[] = {
    CSIDL_COMMON_DESKTOPDIRECTORY,
    CSIDL_COMMON_STARTMENU,
    CSIDL_COMMON_PROGRAMS,
    CSIDL_COMMON_STARTUP,
    CSIDL_DESKTOPDIRECTORY,
    CSIDL_APPDATA,
    CSIDL_PRINTHOOD,
    CSIDL_TEMPLATES,
    CSIDL_FONTS,
    CSIDL_NETHOOD,
    CSIDL_DESKTOPDIRECTORY,
    CSIDL_STARTMENU,
    CSIDL_SENDTO,
    CSIDL_RECENT,
    CSIDL_STARTUP,
    CSIDL_FAVORITES,
    CSIDL_PERSONAL,
    CSIDL_PROGRAMS,
};

std::vector<std::string> FoldersOfShell() {
  std::vector<std::string> paths;
  for (const int folder : kSpecialFolders) {
    wchar_t path[MAX_PATH];
    if (SUCCEEDED(SHGetFolderPathW(nullptr, folder, nullptr, SHGFP_TYPE_CURRENT, path)) &&
        path[0] != L'\0') {
      paths.push_back(Narrow(path));
    }
  }
  return paths;
}

/// Whether the host's shortcuts can name the path. They keep their texts in the code page: a letter
/// that it lacks makes them point at a name that is not there, without an error.
bool IsInCodePage(const std::string& path) {
  const CodePage ofThisMachine(CP_ACP);
  return ofThisMachine.ToText(ofThisMachine.FromText(path)) == path;
}

/// Made by the host, or by the shell where the host cannot name the target.
class HostShortcut : public Shortcut {
 public:
  HostShortcut(const Variant& object, std::string path) : object_(object), path_(std::move(path)) {}

  // The target comes first; what follows is the same path, or empty.
  void TargetPath(const std::string& path) override {
    if (!IsInCodePage(path)) shells_ = std::make_unique<ShellShortcut>(path_);
    if (shells_) return shells_->TargetPath(path);
    object_.Put("TargetPath", path);
  }
  void WorkingDirectory(const std::string& path) override {
    if (shells_) return shells_->WorkingDirectory(path);
    object_.Put("WorkingDirectory", path);
  }
  void IconLocation(const std::string& path) override {
    if (shells_) return shells_->IconLocation(path);
    // Without the number, a comma in the path would be taken as the one before it.
    object_.Put("IconLocation", path + ",0");
  }
  void Save() override {
    if (shells_) return shells_->Save();
    object_.Call("Save");
  }

 private:
  LateBound object_;
  std::string path_;
  std::unique_ptr<ShellShortcut> shells_;
};

class Win32ScriptShell : public ScriptShell {
 public:
  Win32ScriptShell() {
    try {
      host_.emplace("WScript.Shell");
    } catch (const RuntimeError&) {
      // No host: the shell does everything.
    }
  }

  std::vector<std::string> SpecialFolders() override {
    if (host_) {
      try {
        std::vector<std::string> paths = LateBound(host_->Get("SpecialFolders")).Texts();
        if (!paths.empty()) return paths;
      } catch (const RuntimeError&) {
        // The host's collection cannot be listed.
      }
    }
    return FoldersOfShell();
  }

  std::unique_ptr<Shortcut> CreateShortcut(const std::string& path) override {
    if (host_ && IsInCodePage(path)) {
      try {
        return std::make_unique<HostShortcut>(host_->Call("CreateShortcut", {path}), path);
      } catch (const RuntimeError&) {
        // The host cannot make one.
      }
    }
    return std::make_unique<ShellShortcut>(path);
  }

 private:
  std::optional<LateBound> host_;
};

}  // namespace

std::unique_ptr<ScriptShell> Win32ScriptingHost::CreateShell() {
  return std::make_unique<Win32ScriptShell>();
}

}  // namespace talu
