#pragma once

#include <memory>
#include <string>

#include "platform/ScriptingHost.h"
#include "platform/win32/Windows.h"

namespace talu {

/// A shortcut made by the shell itself, without the scripting host.
class ShellShortcut : public Shortcut {
 public:
  /// Raises 429 when the shell cannot make shortcuts.
  explicit ShellShortcut(std::string path);

  void TargetPath(const std::string& path) override;
  void WorkingDirectory(const std::string& path) override;
  void IconLocation(const std::string& path) override;
  void Save() override;

 private:
  struct Release {
    void operator()(IUnknown* object) const { object->Release(); }
  };

  std::string path_;
  std::unique_ptr<IShellLinkW, Release> link_;
};

}  // namespace talu
