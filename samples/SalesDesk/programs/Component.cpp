// A component that registers itself, built three times under three names (COMPONENT_NAME) and
// class ids (COMPONENT_CLASS). It holds no class: what matters here is its registration.
//
// A set-up starts "regsvr32 /s FILE /U" and "regsvr32 /s FILE" one right after the other and waits
// for neither, so both run at once and either may come first. The end must be the same, registered:
// a registration leaves its time behind, and an unregistration whose process is older than the
// registration it finds was started before it, is out of date, and removes nothing. A mutex keeps
// the two from working at the same time.
#include <olectl.h>
#include <windows.h>

#include <string>

namespace {

const std::string kComponentName = COMPONENT_NAME;
const std::string kClassKey = "CLSID\\" COMPONENT_CLASS;
const std::string kProduct = "Software\\SalesDesk";
const std::string kComponents = kProduct + "\\Components";
const std::string kComponentKey = kComponents + "\\" + kComponentName;
constexpr char kRegisteredAt[] = "RegisteredAt";
constexpr DWORD kLongestWaitMilliseconds = 10'000;

HINSTANCE ownModule = nullptr;

// Held while the registry is read and changed.
class RegistrationLock {
 public:
  RegistrationLock() : mutex_(CreateMutexA(nullptr, FALSE, "SalesDesk component registration")) {
    if (mutex_ != nullptr) WaitForSingleObject(mutex_, kLongestWaitMilliseconds);
  }
  ~RegistrationLock() {
    if (mutex_ == nullptr) return;
    ReleaseMutex(mutex_);
    CloseHandle(mutex_);
  }
  RegistrationLock(const RegistrationLock&) = delete;
  RegistrationLock& operator=(const RegistrationLock&) = delete;

 private:
  HANDLE mutex_;
};

// Sets a value, and makes its key on the way. `name` may be null: the key's default value.
bool SetText(HKEY root, const std::string& key, const char* name, const std::string& text) {
  const DWORD size = static_cast<DWORD>(text.size()) + 1;
  return RegSetKeyValueA(root, key.c_str(), name, REG_SZ, text.c_str(), size) == ERROR_SUCCESS;
}

bool SetTime(HKEY root, const std::string& key, const char* name, const FILETIME& time) {
  return RegSetKeyValueA(root, key.c_str(), name, REG_BINARY, &time, sizeof time) == ERROR_SUCCESS;
}

bool RemoveTree(HKEY root, const std::string& key) {
  const LSTATUS status = RegDeleteTreeA(root, key.c_str());
  return status == ERROR_SUCCESS || status == ERROR_FILE_NOT_FOUND;
}

// True when the registration in place was made after this process had started. A time still to
// come means that the clock was set back; such a registration counts as an old one.
bool RegisteredSinceProcessStart() {
  FILETIME registered;
  DWORD size = sizeof registered;
  if (RegGetValueA(HKEY_LOCAL_MACHINE, kComponentKey.c_str(), kRegisteredAt, RRF_RT_REG_BINARY,
                   nullptr, &registered, &size) != ERROR_SUCCESS ||
      size != sizeof registered) {
    return false;
  }
  FILETIME started, ended, inKernel, inUser, now;
  if (!GetProcessTimes(GetCurrentProcess(), &started, &ended, &inKernel, &inUser)) return false;
  GetSystemTimeAsFileTime(&now);
  return CompareFileTime(&started, &registered) <= 0 && CompareFileTime(&registered, &now) <= 0;
}

}  // namespace

STDAPI DllRegisterServer() {
  char path[MAX_PATH] = "";
  GetModuleFileNameA(ownModule, path, MAX_PATH);

  const RegistrationLock lock;
  FILETIME now;
  GetSystemTimeAsFileTime(&now);
  const bool done =
      SetText(HKEY_CLASSES_ROOT, kClassKey, nullptr, kComponentName) &&
      SetText(HKEY_CLASSES_ROOT, kClassKey + "\\InprocServer32", nullptr, path) &&
      SetText(HKEY_CLASSES_ROOT, kClassKey + "\\InprocServer32", "ThreadingModel", "Apartment") &&
      SetText(HKEY_LOCAL_MACHINE, kComponentKey, "Path", path) &&
      SetText(HKEY_LOCAL_MACHINE, kComponentKey, "Class", COMPONENT_CLASS) &&
      SetTime(HKEY_LOCAL_MACHINE, kComponentKey, kRegisteredAt, now);
  return done ? S_OK : SELFREG_E_CLASS;
}

STDAPI DllUnregisterServer() {
  const RegistrationLock lock;
  if (RegisteredSinceProcessStart()) return S_OK;
  const bool classGone = RemoveTree(HKEY_CLASSES_ROOT, kClassKey);
  const bool componentGone = RemoveTree(HKEY_LOCAL_MACHINE, kComponentKey);
  // These go with the last component: a key with others in it is refused.
  RegDeleteKeyA(HKEY_LOCAL_MACHINE, kComponents.c_str());
  RegDeleteKeyA(HKEY_LOCAL_MACHINE, kProduct.c_str());
  return classGone && componentGone ? S_OK : SELFREG_E_CLASS;
}

STDAPI DllGetClassObject(REFCLSID, REFIID, void** object) {
  *object = nullptr;
  return CLASS_E_CLASSNOTAVAILABLE;
}

STDAPI DllCanUnloadNow() {
  return S_OK;
}

BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID) {
  if (reason == DLL_PROCESS_ATTACH) ownModule = module;
  return TRUE;
}
