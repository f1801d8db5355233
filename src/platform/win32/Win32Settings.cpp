#include "platform/win32/Win32Settings.h"

#include "platform/win32/Windows.h"
#include "runtime/RuntimeError.h"

namespace talu {

void Win32Settings::SaveSetting(const std::string& application, const std::string& section,
                                const std::string& key, const std::string& value) {
  const std::string path = "Software\\" + application + "\\" + section;
  const LSTATUS status = RegSetKeyValueA(HKEY_CURRENT_USER, path.c_str(), key.c_str(), REG_SZ,
                                         value.c_str(), static_cast<DWORD>(value.size()) + 1);
  if (status != ERROR_SUCCESS) throw RuntimeError(error::kInvalidProcedureCall);
}

}  // namespace talu
