#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "pages/WizardPage.h"

namespace talu {

class Command;
class Connection;
class ErrorTrap;

/// Builds the databases from the pack's scripts as soon as it is shown. The build and its rollback
/// are written in database/.
class FrmSQLNonQuery : public WizardPage {
 public:
  explicit FrmSQLNonQuery(Wizard& wizard);
  ~FrmSQLNonQuery() override;

  Label LblMsg{*this, "LblMsg", "This will generate database from SQL Script.....",
               TextStyle::Status, layout::kStatus};
  Shape ShpProgBase{*this, "ShpProgBase", false, layout::kTrack};
  Shape ShpProgBar{*this, "ShpProgBar", true, layout::Bar(ProgressShare(6))};
  Label LblNotRes{*this, "LblNotRes", kNotResponding, TextStyle::Note, layout::kNote};
  CommandButton CmdPrev{*this, "CmdPrev", "&Back", layout::kBack};
  CommandButton CmdNext{*this, "CmdNext", "&Next", layout::kNext};

  /// Where a batch begins: script file name and line, from 1.
  struct BatchOrigin {
    std::string Script;
    int Line = 0;
  };
  /// The batch that is being executed, for whoever watches a build; nothing in between.
  const std::optional<BatchOrigin>& Executing() const { return executing_; }

 protected:
  void Form_Load() override;
  void Form_Activate() override;

 private:
  /// Where the scripts of an installation type lie and which key lists them.
  struct ScriptSet {
    std::string Folder;
    std::string Key;
  };

  void CmdPrev_Click();

  void BuildDatabase();
  void Trap(const RuntimeError& error);
  ScriptSet ChosenScripts() const;
  bool RunScripts(const ErrorTrap& step, const ScriptSet& scripts);
  bool RunScript(const ErrorTrap& step, const std::string& folder);
  bool TakeLine(const ErrorTrap& step, std::string_view CurrentLine, std::string_view trimmed);
  void FinishBatch(const ErrorTrap& step);
  void MoveDataFiles(const ErrorTrap& step);
  void RecordName(const ErrorTrap& step, const char* statement, const char* keyword,
                  std::string& list);
  void ExecuteBatch(const ErrorTrap& step);
  void Succeed(const ErrorTrap& step);
  void Fail(const ErrorTrap& step);
  void FailForFormat(const ErrorTrap& step);

  void DropCreatedDatabases();
  void DropCreatedLogins();
  void Send(const std::string& statement);

  /// Made at first use, kept by the page.
  Connection& TheConnection();
  Command& TheCommand();

  Int16 DBCount;
  Int16 LoginCount;
  bool BatchMode = false;
  bool LineByLineMode = false;
  std::string BatchText;
  std::string ScriptName;
  bool KeyFound = false;
  bool InBlock = false;
  std::string LastError;
  bool BuildSucceeded = false;
  bool WentBack = false;
  int ConfigFile = 0;
  int ScriptFile = 0;
  int scriptLine_ = 0;
  BatchOrigin batchOrigin_;
  std::optional<BatchOrigin> executing_;
  std::unique_ptr<Connection> connection_;
  std::unique_ptr<Command> command_;
};

}  // namespace talu
