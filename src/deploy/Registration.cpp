// The two registration steps. The registration tool is started and never waited for.

#include "deploy/MdlShellCopy.h"
#include "pages/FrmApplication.h"
#include "runtime/ErrorTrap.h"
#include "runtime/TextFunctions.h"
#include "startup/Wizard.h"

namespace talu {
namespace {

constexpr int kMinimisedWithFocus = 2;
/// How far the bar steps back, in twips, so that it keeps moving while many files are registered.
constexpr int kStepBack = 500;

std::string RegisterCommand(const std::string& path) {
  return "regsvr32 /s \"" + path + "\"";
}

}  // namespace

void FrmApplication::FileRegistration() {
  const ErrorTrap step([this](const RuntimeError& error) { wizard_.WriteErrorEntry(error); });
  Lblmsg.Caption = "File Registration started. Please Wait...";
  step([&] { wizard_.WriteErrLog("File Registration started..."); });
  const std::string& appFolder = wizard_.State.AppFolderPath;
  Int16 n;
  step.Assign(n, [&] { return wizard_.GetCfgCount("RegnLocation"); });
  if (n > 0) {
    std::string line;
    step.CountTo(n, [&](Int16 i) {
      step.Assign(line, [&] { return wizard_.GetCfgValue("RegnLocation", i); });
      if (!TrimView(line).empty()) step([&] { RegisterFolderFiles(appFolder + line); });
    });
  } else {
    step([&] { RegisterFolderFiles(appFolder); });
  }
  const std::string registered = "All Files registered successfully";
  Lblmsg.Caption = registered;
  step([&] { wizard_.WriteErrLog(registered); });
}

void FrmApplication::RegisterFolderFiles(const std::string& folderPath) {
  const ErrorTrap step([this](const RuntimeError& error) { wizard_.WriteErrorEntry(error); });
  std::unique_ptr<Folder> folder;
  if (!step.Assign(folder, [&] { return wizard_.Machine.Files.GetFolder(folderPath); })) return;
  std::vector<FolderItem> files;
  step.Assign(files, [&] { return folder->Files(); });
  for (const FolderItem& file : files) {
    windows_.DoEvents();
    // Anywhere in the name; a name that holds both is taken twice.
    const std::string path = folder->Path() + "\\" + file.Name;
    if (ContainsUpper(file.Name, ".OCX")) ReRegister(step, path);
    if (ContainsUpper(file.Name, ".DLL")) ReRegister(step, path);
  }
  std::vector<FolderItem> subFolders;
  step.Assign(subFolders, [&] { return folder->SubFolders(); });
  for (const FolderItem& subFolder : subFolders) {
    step([&] { RegisterFolderFiles(subFolder.Path); });
  }
}

void FrmApplication::ReRegister(const ErrorTrap& step, const std::string& path) {
  Processes& programs = wizard_.Machine.Programs;
  Lblmsg.Caption = "Registering - " + path;
  const std::string unregister = RegisterCommand(path) + " /U";
  step([&] { programs.Start(unregister, kMinimisedWithFocus); });
  step([&] { wizard_.WriteErrLog(unregister); });
  step([&] { programs.Start(RegisterCommand(path), kMinimisedWithFocus); });
  step([&] { wizard_.WriteErrLog(RegisterCommand(path)); });
  step([&] {
    const Int16 limit = Int16(kProgressWidth) - StepWeight;
    const Int16 back = limit - kStepBack;
    ShpProgBar.Width = ShpProgBar.Width < limit ? ShpProgBar.Width + int{StepWeight} : int{back};
  });
}

void FrmApplication::SpecialRegistration() {
  const ErrorTrap step([this](const RuntimeError& error) { wizard_.WriteErrorEntry(error); });
  Processes& programs = wizard_.Machine.Programs;
  Lblmsg.Caption = "Special Registration started. Please Wait...";
  step([&] { wizard_.WriteErrLog("Special Registration started..."); });
  Int16 n;
  step.Assign(n, [&] { return wizard_.GetCfgCount("SpecialRegn"); });
  std::string name;
  std::string systemFolder;
  step.CountTo(n, [&](Int16 i) {
    step.Assign(name,
                [&] { return Element(Split(wizard_.GetCfgValue("SpecialRegn", i), ','), 0); });
    step.Assign(systemFolder,
                [&] { return wizard_.Machine.Files.GetSpecialFolder(0) + "\\system"; });
    const std::string path = systemFolder + "\\" + name;
    step([&] {
      ShellCopy(wizard_, wizard_.Machine.AppPath + "\\SpecialRegn\\" + name, systemFolder, true);
    });
    const std::string unregister = RegisterCommand(path) + " /U";
    step([&] { programs.Start(unregister, kMinimisedWithFocus); });
    step([&] { wizard_.WriteErrLog(unregister); });
    step([&] { programs.Start(RegisterCommand(path), kMinimisedWithFocus); });
    step([&] { wizard_.WriteErrLog(RegisterCommand(path)); });
  });
  const std::string finished = "Special Registration finished.";
  Lblmsg.Caption = finished;
  step([&] { wizard_.WriteErrLog(finished); });
}

}  // namespace talu
