#pragma once

#include <string>

#include "platform/Machine.h"
#include "runtime/Int16.h"
#include "runtime/TextFiles.h"
#include "startup/InstallState.h"

namespace talu {

/// What every page and every step of an installation works with: the machine, the state, the text
/// files, the pack's configuration, the log and the uninstall record.
class InstallContext {
 public:
  explicit InstallContext(const talu::Machine& machine)
      : Machine(machine), TextFiles(machine.Files, machine.CodePage) {}
  InstallContext(const InstallContext&) = delete;
  InstallContext& operator=(const InstallContext&) = delete;

  talu::Machine Machine;
  InstallState State;
  talu::TextFiles TextFiles;

  /// Value line `index` (from 1) of the key's block in AppCfg.txt, or the empty text. A blank line
  /// anywhere in the file counts as the key's line. Raises 6 past 32767 counted lines, and what
  /// reading the file raises.
  std::string GetCfgValue(const std::string& key, Int16 index);
  /// The number of non-blank value lines in the key's block; 0 without the key. Raises as
  /// `GetCfgValue` does.
  Int16 GetCfgCount(const std::string& key);

  /// The connection text for the server's master database, from the state; nothing is quoted.
  std::string ServerConnectionString() const;

  /// Closes the log, takes a free number for it, and deletes an existing log or creates an empty
  /// one; the first entry creates it again. Raises what the file raises.
  void ResetErrorLog();
  /// Appends an entry to the installation log: a line "//", the message, an empty line. Leaves the
  /// file open under `LogFileNumber`. Raises what the file raises.
  void WriteErrLog(const std::string& message);
  /// Logs a trapped error: closes the log and writes "//", the error's description and, if given,
  /// the text that was being processed. Raises what the file raises.
  void WriteErrorEntry(const RuntimeError& error);
  void WriteErrorEntry(const RuntimeError& error, const std::string& batchText);

  /// Takes a free number for the uninstall record, creates it if missing, and writes the records of
  /// the folders and the server. Raises what the file raises.
  void StartUninstallRecord();
  /// Appends a record (tag, then value) and an empty line to the uninstall record.
  void WriteUninstall(const std::string& line);

 private:
  std::string ReadCfg();
};

}  // namespace talu
