#include "Main.h"
#include "Wizard.h"
#include "platform/win32/SystemLibrary.h"
#include "platform/win32/Win32Machine.h"

namespace {

#ifndef _MSC_VER
// Runs before all other constructors, even those of the run-time library: what they call may load
// libraries by name.
[[gnu::constructor(101)]] void BeforeAnythingElse() {
  talu::TrustSystemFolderOnly();
}
#endif

}  // namespace

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
