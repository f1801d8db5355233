#pragma once

#include <oaidl.h>
#include <windows.h>

#include <atomic>
#include <functional>
#include <string>
#include <vector>

namespace talu::wine {

/// A failure with its own number and text; the caller of `Invoke` gets it as error information.
struct AutomationError {
  HRESULT Number;
  std::wstring Source;
  std::wstring Description;
};

/// A call that does not fit the member: `Invoke` returns this code and nothing else.
struct BadCall {
  HRESULT Code;
};

/// The arguments of one call, by the position of the member's parameters, whether given by position
/// or by name. The library itself converts values; here they must have the parameter's own type.
class Arguments {
 public:
  /// Raises `BadCall` when `given` names or counts more than `parameterCount` parameters.
  Arguments(const DISPPARAMS& given, std::size_t parameterCount);

  /// Whether the caller gave this argument: an optional one may be left out in two ways.
  bool Has(std::size_t position) const;
  /// Empty when omitted. Raises `BadCall` when the value is not a text.
  std::wstring Text(std::size_t position) const;
  /// `otherwise` when omitted. Raises `BadCall` when the value is not a number.
  long Number(std::size_t position, long otherwise = 0) const;
  /// Null when omitted, or the value contains none. Raises `BadCall` when it is not an object.
  IUnknown* Object(std::size_t position) const;

 private:
  std::vector<VARIANT*> values_;
};

/// One member of an object, by name.
struct Member {
  const wchar_t* Name;
  /// `DISPATCH_METHOD`, `DISPATCH_PROPERTYGET`, `..PUT`, `..PUTREF`; more than one may be set.
  WORD Kinds;
  /// Includes a property's new value.
  std::vector<const wchar_t*> Parameters;
  /// Executes the call; the result starts empty.
  std::function<void(const Arguments& arguments, VARIANT& result)> Run;
};

/// A late-bound object: all members are used by name. It counts its references and deletes itself.
/// It serves the thread only that made it, its apartment; let go by another one, it stays alive.
class DispatchObject : public IDispatch {
 public:
  /// How many objects there are.
  static int Alive();

  DispatchObject(const DispatchObject&) = delete;
  DispatchObject& operator=(const DispatchObject&) = delete;

  STDMETHODIMP QueryInterface(REFIID id, void** object) override;
  STDMETHODIMP_(ULONG) AddRef() override;
  STDMETHODIMP_(ULONG) Release() override;
  STDMETHODIMP GetTypeInfoCount(UINT* count) override;
  STDMETHODIMP GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) override;
  STDMETHODIMP GetIDsOfNames(REFIID reserved, LPOLESTR* names, UINT count, LCID locale,
                             DISPID* ids) override;
  STDMETHODIMP Invoke(DISPID id, REFIID reserved, LCID locale, WORD kinds, DISPPARAMS* given,
                      VARIANT* result, EXCEPINFO* error, UINT* badArgument) override;

 protected:
  /// Members with the same name (a property's get and put) differ in their kinds.
  explicit DispatchObject(std::vector<Member> members);
  virtual ~DispatchObject();

 private:
  const Member* Find(DISPID id, WORD kinds) const;
  bool IsInItsThread() const { return GetCurrentThreadId() == thread_; }

  std::vector<Member> members_;
  std::atomic<ULONG> references_ = 1;
  DWORD thread_ = GetCurrentThreadId();
};

/// A text as a result. The caller of `Invoke` owns it.
VARIANT TextResult(const std::wstring& text);
/// A whole number as a result.
VARIANT NumberResult(long number);
/// An object as a result; it takes over the reference.
VARIANT ObjectResult(IDispatch* object);

}  // namespace talu::wine
