#include "platform/win32/Win32OdbcInstaller.h"

#include "platform/win32/SystemLibrary.h"
#include "runtime/RuntimeError.h"

namespace talu {

bool Win32OdbcInstaller::SQLConfigDataSource(int request, const std::string& driver,
                                             const std::string& attributes) {
  using Function = BOOL(WINAPI*)(HWND, WORD, LPCSTR, LPCSTR);
  static const auto kConfigure = SystemFunction<Function>(L"odbccp32.dll", "SQLConfigDataSource");
  if (kConfigure == nullptr) throw RuntimeError(error::kFileNotFound);
  // c_str() gives one NUL, the list needs two.
  const std::string list = codePage_.FromText(attributes + '\0');
  return kConfigure(nullptr, static_cast<WORD>(request), codePage_.FromText(driver).c_str(),
                    list.c_str()) != FALSE;
}

}  // namespace talu
