// What the system keeps of an installation besides files: shortcuts and data sources.

#include <memory>

#include "platform/win32/Text.h"
#include "platform/win32/Win32Removal.h"
#include "runtime/RuntimeError.h"

namespace talu {
namespace {

constexpr int kRemoveSystemSource = 6;

struct Release {
  void operator()(IUnknown* object) const { object->Release(); }
};

/// A value of the system's data sources, empty when it is missing. The library keeps them there; a
/// 32-bit program sees those of its own kind.
std::string SourceValue(const std::string& section, const wchar_t* name) {
  const std::wstring key = L"Software\\ODBC\\ODBC.INI\\" + Wide(section);
  wchar_t text[1024] = L"";
  DWORD size = sizeof text;
  const LSTATUS status =
      RegGetValueW(HKEY_LOCAL_MACHINE, key.c_str(), name, RRF_RT_REG_SZ, nullptr, text, &size);
  return status == ERROR_SUCCESS ? Narrow(text) : std::string();
}

}  // namespace

std::string Win32Removal::ShortcutTarget(const std::string& path) {
  if (GetFileAttributesW(Wide(path).c_str()) == INVALID_FILE_ATTRIBUTES)
    throw RuntimeError(error::kFileNotFound);
  void* object = nullptr;
  if (FAILED(CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkW,
                              &object))) {
    throw RuntimeError(error::kCannotCreateObject);
  }
  const std::unique_ptr<IShellLinkW, Release> link(static_cast<IShellLinkW*>(object));
  if (FAILED(link->QueryInterface(IID_IPersistFile, &object)))
    throw RuntimeError(error::kCannotCreateObject);
  const std::unique_ptr<IPersistFile, Release> file(static_cast<IPersistFile*>(object));
  if (FAILED(file->Load(Wide(path).c_str(), STGM_READ)))
    throw RuntimeError(error::kInvalidProcedureCall);
  wchar_t target[MAX_PATH] = L"";
  // As it is stored: the target is neither looked for nor asked of a server.
  if (FAILED(link->GetPath(target, MAX_PATH, nullptr, SLGP_RAWPATH))) return {};
  wchar_t expanded[MAX_PATH] = L"";
  const DWORD length = ExpandEnvironmentStringsW(target, expanded, MAX_PATH);
  return Narrow(length > 0 && length <= MAX_PATH ? expanded : target);
}

std::optional<DataSource> Win32Removal::SystemDataSource(const std::string& name) {
  // A key's name has no backslash; nor has a data source's.
  if (name.empty() || name.find('\\') != std::string::npos) return std::nullopt;
  DataSource source;
  source.Driver = SourceValue("ODBC Data Sources", Wide(name).c_str());
  if (source.Driver.empty()) return std::nullopt;
  source.Server = SourceValue(name, L"Server");
  source.Database = SourceValue(name, L"Database");
  source.File = SourceValue(name, L"DBQ");
  return source;
}

bool Win32Removal::RemoveSystemDataSource(const std::string& driver, const std::string& name) {
  return odbc_.SQLConfigDataSource(kRemoveSystemSource, driver, "DSN=" + name);
}

}  // namespace talu
