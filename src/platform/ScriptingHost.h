#pragma once

#include <memory>
#include <string>
#include <vector>

namespace talu {

/// A shell shortcut to be made. Nothing is written before `Save`. Every call raises the object's
/// error.
class Shortcut {
 public:
  virtual ~Shortcut() = default;
  virtual void TargetPath(const std::string& path) = 0;
  virtual void WorkingDirectory(const std::string& path) = 0;
  virtual void IconLocation(const std::string& path) = 0;
  virtual void Save() = 0;
};

/// A "WScript.Shell" object.
class ScriptShell {
 public:
  virtual ~ScriptShell() = default;
  /// Paths of the special folders, in the collection's own order.
  virtual std::vector<std::string> SpecialFolders() = 0;
  /// `path` ends in ".lnk".
  virtual std::unique_ptr<Shortcut> CreateShortcut(const std::string& path) = 0;
};

/// The scripting host.
class ScriptingHost {
 public:
  virtual ~ScriptingHost() = default;
  /// Raises 429 when the object cannot be created.
  virtual std::unique_ptr<ScriptShell> CreateShell() = 0;
};

}  // namespace talu
