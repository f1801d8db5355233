#include "platform/win32/Win32Settings.h"

#include "platform/win32/Text.h"
#include "platform/win32/Windows.h"
#include "runtime/RuntimeError.h"

namespace talu {

void Win32Settings::SaveSetting(const std::string& application, const std::string& section,
                                const std::string& key, const std::string& value) {
  const std::wstring path = Wide("Software\\" + application + "\\" + section);
  const std::wstring text = Wide(value);
  const LSTATUS status =
      RegSetKeyValueW(HKEY_CURRENT_USER, path.c_str(), Wide(key).c_str(), REG_SZ, text.c_str(),
                      static_cast<DWORD>(text.size() + 1) * DWORD{sizeof(wchar_t)});
  if (status != ERROR_SUCCESS) throw RuntimeError(error::kInvalidProcedureCall);
}

}  // namespace talu
