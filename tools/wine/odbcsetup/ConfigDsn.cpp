// The installer's header needs the platform's before it.
// clang-format off
#include <windows.h>
#include <odbcinst.h>
// clang-format on

#include <algorithm>
#include <cstring>
#include <exception>
#include <set>
#include <stdexcept>
#include <string>

#include "OdbcIni.h"

namespace {

using talu::wine::OdbcIni;

/// Converts the ANSI code page to what the driver reads.
std::string Utf8(const std::string& ansi) {
  std::wstring wide(ansi.size(), L'\0');
  wide.resize(static_cast<std::size_t>(
      MultiByteToWideChar(CP_ACP, 0, ansi.data(), static_cast<int>(ansi.size()), wide.data(),
                          static_cast<int>(wide.size()))));
  std::string utf8(wide.size() * 3, '\0');
  utf8.resize(static_cast<std::size_t>(
      WideCharToMultiByte(CP_UTF8, 0, wide.data(), static_cast<int>(wide.size()), utf8.data(),
                          static_cast<int>(utf8.size()), nullptr, nullptr)));
  return utf8;
}

/// The request of one call: the name of the data source and its entries.
struct DataSource {
  std::string Name;
  OdbcIni::Entries Entries;
};

bool IsOneOf(const std::string& key, std::initializer_list<const char*> names) {
  return std::any_of(names.begin(), names.end(),
                     [&](const char* name) { return _stricmp(key.c_str(), name) == 0; });
}

/// Reads "KEY=value" pairs, each ended by a NUL, the list by one more. User and password are given
/// with each connection and not stored. Raises `std::runtime_error` for what would corrupt the
/// file.
DataSource Read(const char* driver, const char* attributes) {
  DataSource source;
  source.Entries.emplace_back("Driver", driver);
  for (const char* pair = attributes; pair != nullptr && *pair != '\0';
       pair += std::strlen(pair) + 1) {
    const std::string text = pair;
    const std::size_t equals = text.find('=');
    if (equals == std::string::npos) throw std::runtime_error("attribute without a value: " + text);
    if (text.find_first_of("\r\n") != std::string::npos) {
      throw std::runtime_error("an attribute must stand on one line");
    }
    const std::string key = text.substr(0, equals);
    const std::string value = text.substr(equals + 1);
    if (IsOneOf(key, {"DSN"})) {
      source.Name = value;
    } else if (!IsOneOf(key, {"UID", "PWD"})) {
      source.Entries.emplace_back(key, Utf8(value));
    }
  }
  if (source.Name.empty() || !SQLValidDSN(source.Name.c_str())) {
    throw std::runtime_error("no name for a data source: '" + source.Name + "'");
  }
  return source;
}

/// Records in the registry which driver the data source has; `nullptr` removes it. Wine's newer
/// driver manager looks there and reads odbc.ini only once, when it is loaded; the older one never
/// looks. Raises `std::runtime_error`.
void Register(const std::string& name, const char* driver) {
  const BOOL done = driver == nullptr ? SQLRemoveDSNFromIni(name.c_str())
                                      : SQLWriteDSNToIni(name.c_str(), driver);
  if (!done) throw std::runtime_error("the registry does not take the data source");
}

std::wstring Wide(const std::string& utf8) {
  std::wstring wide(utf8.size(), L'\0');
  wide.resize(static_cast<std::size_t>(
      MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()), wide.data(),
                          static_cast<int>(wide.size()))));
  return wide;
}

/// Keeps the entries in the registry too, where the drivers of Windows keep theirs. Wine's own
/// function for that would put them among the user's.
void KeepEntries(const std::string& name, const OdbcIni::Entries& entries) {
  const std::wstring key = L"Software\\ODBC\\ODBC.INI\\" + Wide(Utf8(name));
  for (const auto& [entry, value] : entries) {
    if (entry == "Driver") continue;  // the library has written which file that is
    const std::wstring text = Wide(value);
    RegSetKeyValueW(HKEY_LOCAL_MACHINE, key.c_str(), Wide(entry).c_str(), REG_SZ, text.c_str(),
                    static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
  }
}

}  // namespace

/// Adds, changes or removes a data source for `SQLConfigDataSource`, which has already removed the
/// system mode. Asks nothing: a missing value is an error, reported as the installer library does.
BOOL INSTAPI ConfigDSN(HWND, WORD request, LPCSTR driver, LPCSTR attributes) {
  try {
    const DataSource source = Read(driver, attributes);
    const OdbcIni ini;
    // The driver manager looks up the name in 8-bit characters, the driver in UTF-8.
    for (const std::string& name : std::set{source.Name, Utf8(source.Name)}) {
      switch (request) {
        case ODBC_ADD_DSN:
        case ODBC_CONFIG_DSN:
          ini.Replace(name, source.Entries);
          break;
        case ODBC_REMOVE_DSN:
          ini.Remove(name);
          break;
        default:
          throw std::runtime_error("unknown request " + std::to_string(request));
      }
    }
    Register(source.Name, request == ODBC_REMOVE_DSN ? nullptr : driver);
    if (request != ODBC_REMOVE_DSN) KeepEntries(source.Name, source.Entries);
    return TRUE;
  } catch (const std::exception& failure) {
    SQLPostInstallerError(ODBC_ERROR_REQUEST_FAILED, failure.what());
    return FALSE;
  }
}
