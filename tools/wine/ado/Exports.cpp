#include <unknwn.h>
#include <windows.h>

#include <new>

#include "Command.h"
#include "Connection.h"

namespace talu::wine {

namespace {

// The class ids of the data-access library itself.
constexpr CLSID kConnectionClass = {
    0x00000514, 0x0000, 0x0010, {0x80, 0x00, 0x00, 0xAA, 0x00, 0x6D, 0x2E, 0xA4}};
constexpr CLSID kCommandClass = {
    0x00000507, 0x0000, 0x0010, {0x80, 0x00, 0x00, 0xAA, 0x00, 0x6D, 0x2E, 0xA4}};

/// Makes objects of one class; there is one factory per class, which lives as long as the library.
template <class T>
class ClassFactory : public IClassFactory {
 public:
  STDMETHODIMP QueryInterface(REFIID id, void** object) override {
    if (object == nullptr) return E_POINTER;
    const bool known = IsEqualIID(id, IID_IUnknown) || IsEqualIID(id, IID_IClassFactory);
    *object = known ? this : nullptr;
    return known ? S_OK : E_NOINTERFACE;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return 2; }
  STDMETHODIMP_(ULONG) Release() override { return 1; }

  STDMETHODIMP CreateInstance(IUnknown* outer, REFIID id, void** object) override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (outer != nullptr) return CLASS_E_NOAGGREGATION;
    try {
      T* made = new T;
      const HRESULT code = made->QueryInterface(id, object);
      made->Release();
      return code;
    } catch (const std::bad_alloc&) {
      return E_OUTOFMEMORY;
    }
  }
  STDMETHODIMP LockServer(BOOL) override { return S_OK; }
};

}  // namespace

}  // namespace talu::wine

STDAPI DllGetClassObject(REFCLSID wanted, REFIID id, void** object) {
  using namespace talu::wine;
  static ClassFactory<Connection> connections;
  static ClassFactory<Command> commands;
  if (IsEqualCLSID(wanted, kConnectionClass)) return connections.QueryInterface(id, object);
  if (IsEqualCLSID(wanted, kCommandClass)) return commands.QueryInterface(id, object);
  if (object != nullptr) *object = nullptr;
  return CLASS_E_CLASSNOTAVAILABLE;
}

/// For tests: how many objects have not been let go.
STDAPI_(int) ObjectsAlive() {
  return talu::wine::DispatchObject::Alive();
}

/// Never: the library stays until its process ends.
STDAPI DllCanUnloadNow() {
  return S_FALSE;
}
