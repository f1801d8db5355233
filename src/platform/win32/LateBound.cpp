#include "platform/win32/LateBound.h"

#include "platform/win32/Text.h"
#include "runtime/RuntimeError.h"
#include "runtime/Unicode.h"

namespace talu {
namespace {

constexpr std::int32_t kTypeMismatch = 13;
constexpr std::int32_t kNoSuchMember = 438;

std::string TakeText(BSTR text) {
  if (text == nullptr) return {};
  std::string narrow = Narrow({text, SysStringLen(text)});
  SysFreeString(text);
  return narrow;
}

std::int32_t ShortNumber(HRESULT code) {
  if (HRESULT_FACILITY(code) == FACILITY_CONTROL) return HRESULT_CODE(code);
  if (code == DISP_E_UNKNOWNNAME || code == DISP_E_MEMBERNOTFOUND) return kNoSuchMember;
  if (code == DISP_E_TYPEMISMATCH) return kTypeMismatch;
  return code;
}

[[noreturn]] void Raise(HRESULT code, std::string description = "", std::string source = "") {
  const std::int32_t number = ShortNumber(code);
  if (description.empty()) {
    if (number == kNoSuchMember) {
      description = "Object doesn't support this property or method";
    } else if (number == kTypeMismatch) {
      description = "Type mismatch";
    } else if (number != code) {
      description = StandardDescription(number);
    } else {
      description = SystemMessage(code);
    }
  }
  throw RuntimeError(number, std::move(description), std::move(source));
}

[[noreturn]] void Raise(EXCEPINFO& failure) {
  if (failure.pfnDeferredFillIn != nullptr) failure.pfnDeferredFillIn(&failure);
  std::string description = TakeText(failure.bstrDescription);
  std::string source = TakeText(failure.bstrSource);
  SysFreeString(failure.bstrHelpFile);
  // Objects give an HRESULT, a short number, or nothing.
  if (failure.wCode == 0) {
    Raise(failure.scode != 0 ? failure.scode : DISP_E_EXCEPTION, std::move(description),
          std::move(source));
  } else {
    if (description.empty()) description = StandardDescription(failure.wCode);
    throw RuntimeError(failure.wCode, std::move(description), std::move(source));
  }
}

IDispatch* Create(const char* className) {
  CLSID id;
  void* object = nullptr;
  if (FAILED(CLSIDFromProgID(Wide(className).c_str(), &id)) ||
      FAILED(CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER | CLSCTX_LOCAL_SERVER,
                              IID_IDispatch, &object))) {
    throw RuntimeError(error::kCannotCreateObject);
  }
  return static_cast<IDispatch*>(object);
}

std::vector<const Variant*> Addresses(const std::vector<Variant>& values) {
  std::vector<const Variant*> addresses;
  addresses.reserve(values.size());
  for (const Variant& value : values) addresses.push_back(&value);
  return addresses;
}

}  // namespace

Variant::Variant(const std::string& text) : Variant() {
  // Converted in place: a batch may be large.
  value_.vt = VT_BSTR;
  value_.bstrVal = SysAllocStringLen(nullptr, static_cast<UINT>(CountUtf16(text)));
  if (value_.bstrVal == nullptr) throw RuntimeError(error::kOutOfMemory);
  WriteUtf16(text, value_.bstrVal);
}

Variant::Variant(std::int32_t number) : Variant() {
  value_.vt = VT_I4;
  value_.lVal = number;
}

Variant Variant::Object(IDispatch* object) {
  Variant variant;
  object->AddRef();
  variant.value_.vt = VT_DISPATCH;
  variant.value_.pdispVal = object;
  return variant;
}

Variant Variant::Missing() {
  Variant variant;
  variant.value_.vt = VT_ERROR;
  variant.value_.scode = DISP_E_PARAMNOTFOUND;
  return variant;
}

std::int32_t Variant::Number() const {
  Variant number;
  if (FAILED(VariantChangeType(&number.value_, const_cast<VARIANT*>(&value_), 0, VT_I4)))
    Raise(DISP_E_TYPEMISMATCH);
  return number.value_.lVal;
}

std::string Variant::Text() const {
  Variant text;
  if (FAILED(VariantChangeType(&text.value_, const_cast<VARIANT*>(&value_), 0, VT_BSTR)))
    Raise(DISP_E_TYPEMISMATCH);
  return Narrow({text.value_.bstrVal, SysStringLen(text.value_.bstrVal)});
}

IDispatch* Variant::AsObject() const {
  return value_.vt == VT_DISPATCH ? value_.pdispVal : nullptr;
}

LateBound::LateBound(const char* className) : object_(Create(className)) {}

LateBound::LateBound(const Variant& object) : object_(object.AsObject()) {
  if (!object_) throw RuntimeError(error::kObjectNotSet);
  object_->AddRef();
}

Variant LateBound::Get(const char* member, const std::vector<Variant>& arguments) const {
  return Invoke(Find(member), DISPATCH_PROPERTYGET | DISPATCH_METHOD, Addresses(arguments));
}

void LateBound::Put(const char* member, const Variant& value) {
  Invoke(Find(member), DISPATCH_PROPERTYPUT, {&value});
}

void LateBound::PutRef(const char* member, const LateBound& object) {
  const Variant value = Variant::Object(object.object_.get());
  Invoke(Find(member), DISPATCH_PROPERTYPUTREF, {&value});
}

Variant LateBound::Call(const char* member, const std::vector<Variant>& arguments) const {
  return Invoke(Find(member), DISPATCH_METHOD, Addresses(arguments));
}

std::vector<std::string> LateBound::Texts() const {
  const Variant maker = Invoke(DISPID_NEWENUM, DISPATCH_METHOD | DISPATCH_PROPERTYGET, {});
  const bool given = maker.Raw()->vt == VT_UNKNOWN || maker.Raw()->vt == VT_DISPATCH;
  void* found = nullptr;
  if (!given || maker.Raw()->punkVal == nullptr ||
      FAILED(maker.Raw()->punkVal->QueryInterface(IID_IEnumVARIANT, &found))) {
    Raise(DISP_E_MEMBERNOTFOUND);
  }
  const std::unique_ptr<IEnumVARIANT, Release> list(static_cast<IEnumVARIANT*>(found));
  std::vector<std::string> texts;
  for (;;) {
    Variant item;
    const HRESULT result = list->Next(1, item.Raw(), nullptr);
    if (FAILED(result)) Raise(result);
    if (result != S_OK) return texts;
    texts.push_back(item.Text());
  }
}

DISPID LateBound::Find(const char* member) const {
  std::wstring name = Wide(member);
  LPOLESTR names[] = {name.data()};
  DISPID id = DISPID_UNKNOWN;
  const HRESULT result = object_->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id);
  if (FAILED(result)) Raise(result);
  return id;
}

Variant LateBound::Invoke(DISPID member, WORD kind,
                          const std::vector<const Variant*>& arguments) const {
  // Automation takes the arguments in reverse order; borrowed values need no clearing.
  std::vector<VARIANT> reversed;
  reversed.reserve(arguments.size());
  for (auto argument = arguments.rbegin(); argument != arguments.rend(); ++argument) {
    reversed.push_back(*(*argument)->Raw());
  }
  DISPID newValue = DISPID_PROPERTYPUT;
  DISPPARAMS parameters = {};
  parameters.rgvarg = reversed.data();
  parameters.cArgs = static_cast<UINT>(reversed.size());
  if ((kind & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0) {
    parameters.rgdispidNamedArgs = &newValue;
    parameters.cNamedArgs = 1;
  }
  Variant value;
  EXCEPINFO failure = {};
  const HRESULT result = object_->Invoke(member, IID_NULL, LOCALE_USER_DEFAULT, kind, &parameters,
                                         value.Raw(), &failure, nullptr);
  if (result == DISP_E_EXCEPTION) Raise(failure);
  if (FAILED(result)) Raise(result);
  return value;
}

}  // namespace talu
