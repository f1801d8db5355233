#include "runtime/TextFunctions.h"
#include "startup/InstallContext.h"

namespace talu {

// Both files stay open between calls and are reopened at the start of the next, so that their
// numbers are never released.

// Leaves no file when there was one, an empty file when there was none.
void InstallContext::ResetErrorLog() {
  const std::string path = State.AppFolderPath + "\\Ta-luErrLog.txt";
  TextFiles.Close(State.LogFileNumber);
  State.LogFileNumber = TextFiles.FreeFile();
  if (Machine.Files.FileExists(path)) {
    Machine.Files.DeleteFile(path, true);
  } else {
    TextFiles.Open(path, OpenMode::Output, State.LogFileNumber);
    TextFiles.Close(State.LogFileNumber);
  }
}

void InstallContext::WriteErrLog(const std::string& message) {
  TextFiles.ReopenForAppend(State.AppFolderPath + "\\Ta-luErrLog.txt", State.LogFileNumber);
  TextFiles.Print(State.LogFileNumber, {"//\r\n", message, "\r\n"});
}

void InstallContext::WriteErrorEntry(const RuntimeError& error) {
  TextFiles.Close(State.LogFileNumber);
  WriteErrLog("//\r\n" + error.Description + "\r\n");
}

void InstallContext::WriteErrorEntry(const RuntimeError& error, const std::string& batchText) {
  TextFiles.Close(State.LogFileNumber);
  std::string message;
  message.reserve(error.Description.size() + batchText.size() + 8);
  message.append("//\r\n").append(error.Description).append("\r\n").append(batchText);
  WriteErrLog(message.append("\r\n"));
}

void InstallContext::StartUninstallRecord() {
  const std::string path = State.AppFolderPath + "\\Uninstall.dat";
  TextFiles.Close(State.UninstallFileNumber);
  State.UninstallFileNumber = TextFiles.FreeFile();
  if (!Machine.Files.FileExists(path)) {
    TextFiles.Open(path, OpenMode::Output, State.UninstallFileNumber);
    TextFiles.Close(State.UninstallFileNumber);
  }
  WriteUninstall("AppFolder:" + State.AppFolderPath);
  WriteUninstall("DBFolder:" + State.DBFolderPath);
  WriteUninstall("Server:" + State.ServerName);
}

void InstallContext::WriteUninstall(const std::string& line) {
  TextFiles.ReopenForAppend(State.AppFolderPath + "\\Uninstall.dat", State.UninstallFileNumber);
  TextFiles.Print(State.UninstallFileNumber, {line, "\r\n"});
}

}  // namespace talu
