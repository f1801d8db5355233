#pragma once

#include <string>

#include "pages/WizardPage.h"

namespace talu {

/// The installation folder and, in client mode, the server. Next creates the folders, backs up an
/// existing installation, and starts the log and the uninstall record.
class FrmLocation : public WizardPage {
 public:
  explicit FrmLocation(Pages& pages);

  /// Records the application folder in the per-user settings store and logs it; a failure is
  /// logged.
  void AddRegistry();

  Label Label1{*this, "Label1", "Installation Location", TextStyle::Label, Line(1200)};
  Label Label3{*this,
               "Label3",
               "Select a location in which the product files need to be installed in"
               "               this machine.",
               TextStyle::Body,
               {layout::kLeft, 1440, kBrokenWidth, 2 * layout::kLine}};
  TextBox TxtInstaPath{*this, "TxtInstaPath", "Label1", layout::FolderBox(layout::kLeft, 1980)};
  CommandButton CmdLocation{*this, "CmdLocation", "...", layout::FolderButton(1980)};
  Label LblServer{*this, "LblServer", "Server Name", TextStyle::Label, Line(2640)};
  Label LblServerInfo{*this, "LblServerInfo",
                      "Provide your server information where your database is created.",
                      TextStyle::Body, Line(2880)};
  TextBox TxtServer{*this, "TxtServer", "LblServer", layout::Box(layout::kLeft, 3180)};

  Label LblMsg{*this, "LblMsg", "", TextStyle::Status, layout::kStatus};
  Shape ShpProgBase{*this, "ShpProgBase", Shape::Track, layout::kTrack};
  Shape ShpProgBar{*this, "ShpProgBar", Shape::Bar, layout::Bar(ProgressShare(6))};
  Label LblNotRes{*this, "LblNotRes", kNotResponding, TextStyle::Note, layout::kNote};
  CommandButton CmdPrev{*this, "CmdPrev", "&Back", layout::kBack};
  CommandButton CmdNext{*this, "CmdNext", "&Next", layout::kNext};

 protected:
  void Form_Load() override;

 private:
  /// Too narrow for the whole of `Label3`, whose gap then becomes a line break.
  static constexpr int kBrokenWidth = 6000;
  static constexpr Place Line(int top, int lines = 1) {
    return {layout::kLeft, top, layout::kWidth, lines * layout::kLine};
  }

  void CmdLocation_Click();
  void CmdNext_Click();
  void CmdPrev_Click();
  void TxtInstaPath_Change();
  void TxtInstaPath_MouseMove();
  void TxtServer_Change();
  void TxtServer_GotFocus();

  void ReadFolderNames();
  void AddProductFolder();
  void SetApplicationFolder();
  void EnableNextWhenFilled();
  void PrepareFolders();
  void BackUpApplicationFolder();
  /// The backup folder of this minute.
  std::string DatedBackupFolder() const;
};

}  // namespace talu
