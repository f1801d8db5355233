#include "Automation.h"

#include <oleauto.h>

#include <algorithm>
#include <cwchar>
#include <new>

namespace talu::wine {

namespace {

constexpr WORD kPuts = DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF;

std::atomic<int> alive = 0;

void Require(const VARIANT& value, VARTYPE type) {
  if (V_VT(&value) != type) throw BadCall{DISP_E_TYPEMISMATCH};
}

bool SameName(const wchar_t* left, const wchar_t* right) {
  return _wcsicmp(left, right) == 0;
}

void Report(const AutomationError& failure, EXCEPINFO& error) {
  error = {};
  error.scode = failure.Number;
  error.bstrSource = SysAllocString(failure.Source.c_str());
  error.bstrDescription = SysAllocString(failure.Description.c_str());
}

}  // namespace

Arguments::Arguments(const DISPPARAMS& given, std::size_t parameterCount)
    : values_(parameterCount) {
  // Named arguments come first; the others follow in reverse order.
  if (given.cArgs > parameterCount || given.cNamedArgs > given.cArgs)
    throw BadCall{DISP_E_BADPARAMCOUNT};
  for (UINT i = 0; i < given.cArgs; ++i) {
    std::size_t position = given.cArgs - 1 - i;
    if (i < given.cNamedArgs) {
      const DISPID name = given.rgdispidNamedArgs[i];
      position = name == DISPID_PROPERTYPUT ? parameterCount - 1 : static_cast<std::size_t>(name);
      if (position >= parameterCount) throw BadCall{DISP_E_PARAMNOTFOUND};
    }
    values_[position] = &given.rgvarg[i];
  }
}

bool Arguments::Has(std::size_t position) const {
  const VARIANT* value = values_[position];
  return value != nullptr && !(V_VT(value) == VT_ERROR && V_ERROR(value) == DISP_E_PARAMNOTFOUND);
}

std::wstring Arguments::Text(std::size_t position) const {
  if (!Has(position)) return {};
  const VARIANT& value = *values_[position];
  Require(value, VT_BSTR);
  return {V_BSTR(&value), SysStringLen(V_BSTR(&value))};
}

long Arguments::Number(std::size_t position, long otherwise) const {
  if (!Has(position)) return otherwise;
  Require(*values_[position], VT_I4);
  return V_I4(values_[position]);
}

IUnknown* Arguments::Object(std::size_t position) const {
  if (!Has(position)) return nullptr;
  Require(*values_[position], VT_DISPATCH);
  return V_DISPATCH(values_[position]);
}

DispatchObject::DispatchObject(std::vector<Member> members) : members_(std::move(members)) {
  ++alive;
}

DispatchObject::~DispatchObject() {
  --alive;
}

int DispatchObject::Alive() {
  return alive;
}

STDMETHODIMP DispatchObject::QueryInterface(REFIID id, void** object) {
  if (object == nullptr) return E_POINTER;
  const bool known = IsEqualIID(id, IID_IUnknown) || IsEqualIID(id, IID_IDispatch);
  *object = known ? static_cast<IDispatch*>(this) : nullptr;
  if (!known) return E_NOINTERFACE;
  AddRef();
  return S_OK;
}

STDMETHODIMP_(ULONG) DispatchObject::AddRef() {
  return ++references_;
}

STDMETHODIMP_(ULONG) DispatchObject::Release() {
  const ULONG left = --references_;
  if (left == 0 && IsInItsThread()) delete this;
  return left;
}

STDMETHODIMP DispatchObject::GetTypeInfoCount(UINT* count) {
  if (count == nullptr) return E_POINTER;
  *count = 0;
  return S_OK;
}

STDMETHODIMP DispatchObject::GetTypeInfo(UINT, LCID, ITypeInfo** info) {
  if (info != nullptr) *info = nullptr;
  return DISP_E_BADINDEX;
}

STDMETHODIMP DispatchObject::GetIDsOfNames(REFIID reserved, LPOLESTR* names, UINT count, LCID,
                                           DISPID* ids) {
  if (!IsInItsThread()) return RPC_E_WRONG_THREAD;
  if (!IsEqualIID(reserved, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
  std::fill(ids, ids + count, DISPID_UNKNOWN);
  const auto member = std::find_if(members_.begin(), members_.end(), [&](const Member& candidate) {
    return SameName(candidate.Name, names[0]);
  });
  if (member == members_.end()) return DISP_E_UNKNOWNNAME;
  // Identifiers start at 1: 0 is the default member.
  ids[0] = static_cast<DISPID>(member - members_.begin()) + 1;

  HRESULT code = S_OK;
  for (UINT i = 1; i < count; ++i) {
    const auto& parameters = member->Parameters;
    const auto parameter =
        std::find_if(parameters.begin(), parameters.end(),
                     [&](const wchar_t* candidate) { return SameName(candidate, names[i]); });
    if (parameter == parameters.end()) {
      code = DISP_E_UNKNOWNNAME;
    } else {
      ids[i] = static_cast<DISPID>(parameter - parameters.begin());
    }
  }
  return code;
}

const Member* DispatchObject::Find(DISPID id, WORD kinds) const {
  if (id < 1 || static_cast<std::size_t>(id) > members_.size()) return nullptr;
  const wchar_t* name = members_[static_cast<std::size_t>(id) - 1].Name;
  for (const Member& member : members_) {
    if ((member.Kinds & kinds) != 0 && SameName(member.Name, name)) return &member;
  }
  return nullptr;
}

STDMETHODIMP DispatchObject::Invoke(DISPID id, REFIID reserved, LCID, WORD kinds, DISPPARAMS* given,
                                    VARIANT* result, EXCEPINFO* error, UINT*) {
  if (!IsInItsThread()) return RPC_E_WRONG_THREAD;
  if (!IsEqualIID(reserved, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
  const Member* member = Find(id, kinds);
  if (member == nullptr) return DISP_E_MEMBERNOTFOUND;
  try {
    VARIANT answer{};
    const Arguments arguments(*given, member->Parameters.size());
    // A new value goes by this name, by reference as well.
    if ((member->Kinds & kPuts) != 0 &&
        (given->cNamedArgs != 1 || *given->rgdispidNamedArgs != DISPID_PROPERTYPUT ||
         !arguments.Has(0)))
      return DISP_E_PARAMNOTOPTIONAL;
    member->Run(arguments, answer);
    if (result != nullptr) {
      *result = answer;
    } else {
      VariantClear(&answer);
    }
    return S_OK;
  } catch (const BadCall& call) {
    return call.Code;
  } catch (const AutomationError& failure) {
    if (error != nullptr) Report(failure, *error);
    return DISP_E_EXCEPTION;
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  } catch (...) {
    return E_UNEXPECTED;
  }
}

VARIANT TextResult(const std::wstring& text) {
  VARIANT result{};
  V_VT(&result) = VT_BSTR;
  V_BSTR(&result) = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
  return result;
}

VARIANT NumberResult(long number) {
  VARIANT result{};
  V_VT(&result) = VT_I4;
  V_I4(&result) = number;
  return result;
}

VARIANT ObjectResult(IDispatch* object) {
  VARIANT result{};
  V_VT(&result) = VT_DISPATCH;
  V_DISPATCH(&result) = object;
  return result;
}

}  // namespace talu::wine
