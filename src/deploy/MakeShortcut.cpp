#include "deploy/MdlCommon.h"
#include "runtime/ErrorTrap.h"
#include "runtime/TextFunctions.h"
#include "startup/InstallContext.h"

namespace talu {
namespace {

/// The object of a variable. Raises 91 when the variable was never set.
template <class Object>
Object& Set(const std::unique_ptr<Object>& variable) {
  if (!variable) throw RuntimeError(error::kObjectNotSet);
  return *variable;
}

std::string LastComponentWithoutBlanks(const std::string& path) {
  return Replace(Mid(path, InStrRev(path, "\\") + 1), " ", "");
}

}  // namespace

void MakeShortcut(InstallContext& install, const std::string& target, const std::string& selector,
                  const std::string& name, const std::string& workingDir) {
  bool success = false;
  const ErrorTrap step([&](const RuntimeError& error) {
    success = false;
    install.WriteErrorEntry(error);
  });
  FileSystemObject& files = install.Machine.Files;
  const auto createMissing = [&files](const std::string& path) {
    if (!files.FolderExists(path)) files.CreateFolder(path);
  };
  const std::string wanted = UCase(TrimView(selector));
  const bool inStartMenu = wanted == "STARTMENU" || wanted == "PROGRAMS";

  std::unique_ptr<ScriptShell> shell;
  step.Assign(shell, [&] { return install.Machine.Scripting.CreateShell(); });
  std::vector<std::string> specialFolders;
  step.Assign(specialFolders, [&] { return Set(shell).SpecialFolders(); });
  std::unique_ptr<Shortcut> shortcut;
  std::string folder;
  for (const std::string& specialFolder : specialFolders) {
    success = true;
    if (wanted != UCase(TrimView(LastComponentWithoutBlanks(specialFolder)))) continue;
    folder = specialFolder;
    if (inStartMenu) {
      step([&] { createMissing(folder + "\\TALU"); });
      folder += "\\TALU\\" + install.State.AppFolderName;
      step([&] { createMissing(folder); });
    }
    std::string path = folder;
    path.append(1, '\\').append(name).append(".lnk");
    const std::string link = "Shotcut:" + path;
    step.Assign(shortcut, [&] { return Set(shell).CreateShortcut(path); });
    step([&] { Set(shortcut).TargetPath(target); });
    step([&] { Set(shortcut).WorkingDirectory(workingDir); });
    step([&] { Set(shortcut).IconLocation(target); });
    step([&] { Set(shortcut).Save(); });
    if (!success) {
      step([&] { install.WriteErrLog(link + " can't created"); });
      continue;
    }
    if (inStartMenu) step([&] { install.WriteUninstall("ShotcutFolder:" + folder); });
    step([&] { install.WriteUninstall(link); });
    step([&] { install.WriteErrLog(link + " created"); });
    return;
  }
}

}  // namespace talu
