#include "platform/win32/SystemLibrary.h"
#include "platform/win32/Win32Machine.h"
#include "startup/Main.h"
#include "startup/Wizard.h"

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int) {
  talu::TrustSystemFolderOnly();
  talu::Win32Machine machine;
  talu::Wizard wizard(machine.Parts());
  talu::Main(wizard);
  return machine.Run();
}
