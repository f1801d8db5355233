#pragma once

#include <memory>
#include <string>
#include <tuple>

#include "platform/Machine.h"
#include "runtime/Int16.h"
#include "runtime/TextFiles.h"
#include "startup/InstallState.h"

namespace talu {

class FrmType;
class FrmMode;
class FrmAuthentication;
class FrmLocation;
class FrmSQLNonQuery;
class FrmApplication;
class MdlDataBaseBackup;

/// One run of the wizard: the machine, the installation's state, the text files and the six pages.
/// Every page and module works on the same object.
class Wizard {
 public:
  explicit Wizard(const talu::Machine& machine);
  Wizard(const Wizard&) = delete;
  Wizard& operator=(const Wizard&) = delete;
  ~Wizard();

  talu::Machine Machine;
  InstallState State;
  talu::TextFiles TextFiles;

  /// The one page of its type, made at first use.
  template <class PageType>
  PageType& Page();
  /// The backup before a build; its state lives as long as the program.
  MdlDataBaseBackup& DataBaseBackup();

  /// The value line `index` (from 1) of the key's block in AppCfg.txt, or the empty text. A blank
  /// line anywhere in the file counts as the key's own line. Raises 6 past 32767 counted lines, and
  /// what reading the file raises.
  std::string GetCfgValue(const std::string& key, Int16 index);
  /// The number of non-blank value lines in the key's block; 0 without the key. Raises as
  /// `GetCfgValue` does.
  Int16 GetCfgCount(const std::string& key);

  /// The text that opens the server's master database, built from the state; nothing is quoted.
  std::string ServerConnectionString() const;

  /// Appends an entry to the installation log: a line "//", the message, an empty line. Leaves the
  /// file open under `LogFileNumber`. Raises what the file raises.
  void WriteErrLog(const std::string& message);
  /// Appends a record (tag, then value) and an empty line to the uninstall record.
  void WriteUninstall(const std::string& line);
  /// The entry of a trapped error: closes the log and writes "//", the error's description and,
  /// where one is given, the text that was being worked on. Raises what the file raises.
  void WriteErrorEntry(const RuntimeError& error);
  void WriteErrorEntry(const RuntimeError& error, const std::string& batchText);

 private:
  std::string ReadCfg();

  std::tuple<std::unique_ptr<FrmType>, std::unique_ptr<FrmMode>, std::unique_ptr<FrmAuthentication>,
             std::unique_ptr<FrmLocation>, std::unique_ptr<FrmSQLNonQuery>,
             std::unique_ptr<FrmApplication>>
      pages_;
  std::unique_ptr<MdlDataBaseBackup> dataBaseBackup_;
};

}  // namespace talu
