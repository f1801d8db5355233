#pragma once

#include "platform/Machine.h"
#include "platform/win32/Win32Ado.h"
#include "platform/win32/Win32Clock.h"
#include "platform/win32/Win32FileSystem.h"
#include "platform/win32/Win32OdbcInstaller.h"
#include "platform/win32/Win32Processes.h"
#include "platform/win32/Win32ScriptingHost.h"
#include "platform/win32/Win32Settings.h"
#include "platform/win32/Win32ShellOperations.h"
#include "platform/win32/Win32WindowSystem.h"

namespace talu {

/// The machine on which the program runs. There is one, made and used by the main thread.
class Win32Machine {
 public:
  Win32Machine();
  ~Win32Machine();
  Win32Machine(const Win32Machine&) = delete;
  Win32Machine& operator=(const Win32Machine&) = delete;

  Machine& Parts() { return parts_; }
  Win32WindowSystem& Windows() { return windows_; }
  /// The message loop; returns the program's exit code.
  int Run() { return windows_.Run(); }

 private:
  /// The shell, pictures and automation objects need OLE as long as any of them exists.
  struct Ole {
    Ole();
    ~Ole();
  };

  Ole ole_;
  Win32WindowSystem windows_;
  Win32FileSystem files_;
  Win32ShellOperations shell_;
  Win32Ado ado_;
  Win32Processes processes_;
  CodePage codePage_;
  Win32OdbcInstaller odbc_;
  Win32ScriptingHost scripting_;
  Win32Settings settings_;
  Win32Clock clock_;
  Machine parts_;
};

}  // namespace talu
