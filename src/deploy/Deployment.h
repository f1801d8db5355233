#pragma once

#include <string>

#include "runtime/Int16.h"
#include "startup/WorkView.h"

namespace talu {

class ErrorTrap;
class InstallContext;

/// Installs the application, step by step; each step is a file in this folder.
class Deployment {
 public:
  /// `closing` shows the closing instructions.
  Deployment(InstallContext& install, const WorkView& view, Label& closing)
      : install_(install), view_(view), closing_(closing) {}

  /// Runs every step, in order. A failing step is logged and never stops the later ones.
  void RunDeployment();

  /// Registers a system data source. Attributes are separated by NUL characters, none after the
  /// last. Returns whether the installer library accepted it.
  bool CreateDSN(const std::string& driver, const std::string& attributes);
  /// The shortcuts step.
  void Shotcuts();
  /// The add-on packs step. Raises what reading the configuration or writing the log raises.
  void RunAddOns();
  /// The settings files step. Raises 9 for a line with too few fields, and what the files raise.
  void WriteSettings();

  /// The progress unit in twips: 4 in client mode, 1 in server mode.
  Int16 StepWeight;

 private:
  void CreateSystemDSNs();
  void FileRegistration();
  void RegisterFolderFiles(const std::string& folderPath);
  void ReRegister(const ErrorTrap& step, const std::string& path);
  void Register(const ErrorTrap& step, const std::string& path);
  void SpecialRegistration();
  void ShowFinalMsg();

  InstallContext& install_;
  WorkView view_;
  Label& closing_;
};

}  // namespace talu
