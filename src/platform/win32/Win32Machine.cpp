#include "platform/win32/Win32Machine.h"

#include "platform/win32/Text.h"
#include "platform/win32/Windows.h"

namespace talu {
namespace {

std::string ProgramFolder() {
  wchar_t path[MAX_PATH] = L"";
  const DWORD length = GetModuleFileNameW(nullptr, path, MAX_PATH);
  const std::string program = Narrow({path, length});
  return program.substr(0, program.rfind('\\'));
}

}  // namespace

Win32Machine::Ole::Ole() {
  OleInitialize(nullptr);
}
Win32Machine::Ole::~Ole() {
  OleUninitialize();
}

Win32Machine::Win32Machine()
    : ado_([this] { windows_.ShowProgress(); }, [this](HANDLE event) { windows_.WaitFor(event); }),
      processes_([this] { windows_.ShowProgress(); }),
      codePage_(CP_ACP),
      odbc_(codePage_),
      parts_{.Windows = windows_,
             .Files = files_,
             .Shell = shell_,
             .DataAccess = ado_,
             .Odbc = odbc_,
             .Programs = processes_,
             .Scripting = scripting_,
             .Settings = settings_,
             .Clock = clock_,
             .CodePage = codePage_,
             .AppPath = ProgramFolder()} {}

Win32Machine::~Win32Machine() = default;

}  // namespace talu
