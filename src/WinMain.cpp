#include "Main.h"
#include "Wizard.h"
#include "platform/win32/SystemLibrary.h"
#include "platform/win32/Win32Machine.h"

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int) {
#ifdef _MSC_VER
  talu::TrustSystemFolderOnly();
#endif
  talu::Win32Machine machine;
  talu::Wizard wizard(machine.Parts());
  talu::Main(wizard);
  talu::LoadWhatIsAskedForLater();
  return machine.Run();
}
