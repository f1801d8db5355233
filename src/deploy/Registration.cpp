// The two registration steps. They start the registration tool and never wait for it.

#include "deploy/Deployment.h"
#include "deploy/MdlShellCopy.h"
#include "runtime/ErrorTrap.h"
#include "runtime/TextFunctions.h"
#include "startup/InstallContext.h"

namespace talu {
namespace {

constexpr int kMinimisedWithFocus = 2;
/// How far the bar steps back, in twips, so that it keeps moving while many files are registered.
constexpr int kStepBack = 500;

}  // namespace

void Deployment::FileRegistration() {
  const ErrorTrap step([this](const RuntimeError& error) { install_.WriteErrorEntry(error); });
  view_.Status.Caption = "File Registration started. Please Wait...";
  step([&] { install_.WriteErrLog("File Registration started..."); });
  const std::string& appFolder = install_.State.AppFolderPath;
  Int16 n;
  step.Assign(n, [&] { return install_.GetCfgCount("RegnLocation"); });
  if (n > 0) {
    std::string line;
    step.CountTo(n, [&](Int16 i) {
      step.Assign(line, [&] { return install_.GetCfgValue("RegnLocation", i); });
      if (!TrimView(line).empty()) step([&] { RegisterFolderFiles(appFolder + line); });
    });
  } else {
    step([&] { RegisterFolderFiles(appFolder); });
  }
  const std::string registered = "All Files registered successfully";
  view_.Status.Caption = registered;
  step([&] { install_.WriteErrLog(registered); });
}

void Deployment::RegisterFolderFiles(const std::string& folderPath) {
  const ErrorTrap step([this](const RuntimeError& error) { install_.WriteErrorEntry(error); });
  std::unique_ptr<Folder> folder;
  if (!step.Assign(folder, [&] { return install_.Machine.Files.GetFolder(folderPath); })) return;
  std::vector<FolderItem> files;
  step.Assign(files, [&] { return folder->Files(); });
  for (const FolderItem& file : files) {
    install_.Machine.Windows.DoEvents();
    // Anywhere in the name; a name that contains both is handled twice.
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

void Deployment::ReRegister(const ErrorTrap& step, const std::string& path) {
  view_.Status.Caption = "Registering - " + path;
  Register(step, path);
  step([&] {
    const Int16 limit = Int16(kProgressWidth) - StepWeight;
    const Int16 back = limit - kStepBack;
    view_.Bar.Width = view_.Bar.Width < limit ? view_.Bar.Width + int{StepWeight} : int{back};
  });
}

void Deployment::Register(const ErrorTrap& step, const std::string& path) {
  Processes& programs = install_.Machine.Programs;
  const std::string command = "regsvr32 /s \"" + path + "\"";
  for (const std::string& next : {command + " /U", command}) {
    step([&] { programs.Start(next, kMinimisedWithFocus); });
    step([&] { install_.WriteErrLog(next); });
  }
}

void Deployment::SpecialRegistration() {
  const ErrorTrap step([this](const RuntimeError& error) { install_.WriteErrorEntry(error); });
  view_.Status.Caption = "Special Registration started. Please Wait...";
  step([&] { install_.WriteErrLog("Special Registration started..."); });
  Int16 n;
  step.Assign(n, [&] { return install_.GetCfgCount("SpecialRegn"); });
  std::string name;
  std::string systemFolder;
  step.CountTo(n, [&](Int16 i) {
    step.Assign(name,
                [&] { return Element(Split(install_.GetCfgValue("SpecialRegn", i), ','), 0); });
    step.Assign(systemFolder,
                [&] { return install_.Machine.Files.GetSpecialFolder(0) + "\\system"; });
    const std::string path = systemFolder + "\\" + name;
    step([&] {
      ShellCopy(install_, install_.Machine.AppPath + "\\SpecialRegn\\" + name, systemFolder, true);
    });
    Register(step, path);
  });
  const std::string finished = "Special Registration finished.";
  view_.Status.Caption = finished;
  step([&] { install_.WriteErrLog(finished); });
}

}  // namespace talu
