#pragma once

#include <memory>
#include <string>

#include "pages/WizardPage.h"
#include "runtime/Int16.h"

namespace talu {

class Connection;

/// The last page: as soon as it is shown it puts the application on the machine, step by step. The
/// steps are written in deploy/.
class FrmApplication : public WizardPage {
 public:
  explicit FrmApplication(Wizard& wizard);
  ~FrmApplication() override;

  /// Registers a system data source. Attributes are separated by NUL characters, none behind the
  /// last. Returns whether the installer library accepted it.
  bool CreateDSN(const std::string& driver, const std::string& attributes);
  /// The shortcuts step.
  void Shotcuts();
  /// The add-on packs step. Raises what reading the configuration or writing the log raises.
  void RunAddOns();
  /// The settings files step. Raises 9 for a line with too few fields, and what the files raise.
  void WriteSettings();

  Label Lblmsg{*this, "Lblmsg", " This will install Application.....", TextStyle::Status,
               layout::kStatus};
  Shape ShpProgBase{*this, "ShpProgBase", false, layout::kTrack};
  Shape ShpProgBar{*this, "ShpProgBar", true, layout::Bar(0)};
  Label LblNotRes{*this, "LblNotRes", kNotResponding, TextStyle::Note, layout::kNote};
  Label LblFinalMsg{*this,
                    "LblFinalMsg",
                    "",
                    TextStyle::Body,
                    {layout::kLeft - kScrollMargin, 960, layout::kWidth + kScrollMargin, 3120}};
  CommandButton CmdNext{*this, "CmdNext", "&Finish", layout::kNext};

 protected:
  void Form_Load() override;
  void Form_Activate() override;

 private:
  void CmdNext_Click();

  void RunDeployment();
  void CreateSystemDSNs();
  void FileRegistration();
  void RegisterFolderFiles(const std::string& folderPath);
  void ReRegister(const class ErrorTrap& step, const std::string& path);
  void SpecialRegistration();
  void ShowFinalMsg();

  /// The page's progress unit in twips: 4 in client mode, 1 in server mode.
  Int16 StepWeight;
};

}  // namespace talu
