#pragma once

#include <memory>
#include <string>

#include "platform/CodePage.h"
#include "platform/FileSystemObject.h"
#include "platform/ShellOperations.h"
#include "platform/simulated/Journal.h"
#include "platform/simulated/SimulatedDisk.h"

namespace talu {

/// The file-system object and the shell's file operation over a simulated disk. The Windows folder
/// is C:\Windows. The journal shows what is printed as it stands in the file.
class SimulatedFiles : public FileSystemObject, public ShellOperations {
 public:
  SimulatedFiles(Journal& journal, SimulatedDisk& disk, const CodePage& codePage)
      : journal_(journal), disk_(disk), codePage_(codePage) {}

  bool FileExists(const std::string& path) override { return disk_.FileExists(path); }
  bool FolderExists(const std::string& path) override { return disk_.FolderExists(path); }
  void CreateFolder(const std::string& path) override;
  void DeleteFile(const std::string& path, bool force) override;
  std::unique_ptr<Folder> GetFolder(const std::string& path) override;
  std::string GetSpecialFolder(int number) override;
  std::unique_ptr<TextFile> OpenTextFile(const std::string& path, OpenMode mode) override;

  int FileOperation(int operation, const std::string& from, const std::string& to,
                    int flags) override;

 private:
  Journal& journal_;
  SimulatedDisk& disk_;
  const CodePage& codePage_;
};

}  // namespace talu
