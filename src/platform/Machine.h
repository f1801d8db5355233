#pragma once

#include <string>

#include "platform/Ado.h"
#include "platform/Clock.h"
#include "platform/CodePage.h"
#include "platform/FileSystemObject.h"
#include "platform/OdbcInstaller.h"
#include "platform/Processes.h"
#include "platform/ScriptingHost.h"
#include "platform/SettingsStore.h"
#include "platform/ShellOperations.h"
#include "platform/WindowSystem.h"

namespace talu {

/// Everything outside the process. The wizard asks it and touches nothing itself.
struct Machine {
  WindowSystem& Windows;
  FileSystemObject& Files;
  ShellOperations& Shell;
  Ado& DataAccess;
  OdbcInstaller& Odbc;
  Processes& Programs;
  ScriptingHost& Scripting;
  SettingsStore& Settings;
  talu::Clock& Clock;
  /// That of its text files.
  const talu::CodePage& CodePage;
  /// The pack folder (the folder that holds the program), without a trailing backslash.
  std::string AppPath;
};

}  // namespace talu
