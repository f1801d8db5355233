#include "runtime/TextFunctions.h"
#include "startup/Wizard.h"

namespace talu {

// Both files stay open between calls and are reopened at the start of the next, so that the file
// number is never given back.

void Wizard::WriteErrLog(const std::string& message) {
  TextFiles.ReopenForAppend(State.AppFolderPath + "\\Ta-luErrLog.txt", State.LogFileNumber);
  TextFiles.Print(State.LogFileNumber, {"//\r\n", message, "\r\n"});
}

void Wizard::WriteUninstall(const std::string& line) {
  TextFiles.ReopenForAppend(State.AppFolderPath + "\\Uninstall.dat", State.UninstallFileNumber);
  TextFiles.Print(State.UninstallFileNumber, {line, "\r\n"});
}

void Wizard::WriteErrorEntry(const RuntimeError& error) {
  TextFiles.Close(State.LogFileNumber);
  WriteErrLog("//\r\n" + error.Description + "\r\n");
}

void Wizard::WriteErrorEntry(const RuntimeError& error, const std::string& batchText) {
  TextFiles.Close(State.LogFileNumber);
  std::string message;
  message.reserve(error.Description.size() + batchText.size() + 8);
  message.append("//\r\n").append(error.Description).append("\r\n").append(batchText);
  WriteErrLog(message.append("\r\n"));
}

}  // namespace talu
