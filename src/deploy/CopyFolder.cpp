#include "deploy/MdlCommon.h"
#include "deploy/MdlShellCopy.h"
#include "runtime/ErrorTrap.h"
#include "runtime/TextFunctions.h"
#include "startup/InstallContext.h"
#include "startup/WorkView.h"

namespace talu {
namespace {

/// Where the bar stops while files are copied, in twips.
constexpr int kCopyLimit = 6700;

/// Raises 5 for a name shorter than four characters.
bool IsDatabaseFile(const std::string& name) {
  const std::string ending = Mid(name, Length(name) - 3, 4);
  return ending == ".mdf" || ending == ".ldf";
}

}  // namespace

void CopyFolderTree(InstallContext& install, const WorkView& view, const std::string& source,
                    const std::string& target) {
  FileSystemObject& files = install.Machine.Files;
  try {
    files.GetFolder(target);
    const auto folder = files.GetFolder(source);
    CopyFolderFiles(install, view, source, target);
    for (const FolderItem& subFolder : folder->SubFolders()) {
      const std::string newTarget = target + "\\" + subFolder.Name;
      if (!files.FolderExists(newTarget)) {
        files.CreateFolder(newTarget);
        install.WriteErrLog("//\r\nCreating New Folder - " + newTarget);
      } else {
        install.WriteErrLog("//\r\nFolder Already exists - " + newTarget);
      }
      CopyFolderTree(install, view, subFolder.Path, newTarget);
    }
  } catch (...) {
    CaughtError();
  }
}

void CopyFolderFiles(InstallContext& install, const WorkView& view, const std::string& source,
                     const std::string& target) {
  const FolderItem* current = nullptr;
  const ErrorTrap step([&](const RuntimeError& error) {
    if (current == nullptr) throw RuntimeError(error::kObjectNotSet);
    install.WriteErrLog("//\r\nCan't copy " + current->Path + "to" + target + "\\" + current->Name +
                        "-" + error.Description + "\r\n");
  });
  std::vector<FolderItem> items;
  step.Assign(items, [&] { return install.Machine.Files.GetFolder(source)->Files(); });
  for (const FolderItem& file : items) {
    current = &file;
    bool skip = false;  // also when the name is too short for the test
    step.Assign(skip, [&] { return IsDatabaseFile(file.Name); });
    if (skip) continue;
    view.Status.Caption = "Copying - " + target + "\\" + file.Name;
    step([&] { ShellCopy(install, file.Path, target + "\\" + file.Name, true); });
    Shape& bar = view.Bar;
    bar.Width = bar.Width < kCopyLimit ? bar.Width + 1 : kCopyLimit;
    step([&] { install.WriteErrLog("//\r\nCopying file - " + target + "\\" + file.Path); });
    install.Machine.Windows.DoEvents();
  }
}

}  // namespace talu
