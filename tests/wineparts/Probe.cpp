// Late-binds objects by name and calls them as a script on standard input says, one call a line,
// and answers each line with what came back:
//
//   new NAME CLASS                    makes an object
//   call|get|put|bind NAME MEMBER ARGUMENTS
//                                     an object that comes back has the name `it`
//   drop NAME                         lets an object go; answers how many are alive
//   dsn REQUEST DRIVER ATTRIBUTES     SQLConfigDataSource; "|" stands for the NUL between pairs
//
// Arguments are separated by "|": a whole number, "-" (left out), "@NAME" (an object), "*N" (a
// comment of N characters), else text; "PARAMETER:=" in front gives one by name. `bind` puts by
// reference.

// The installer's header needs the platform's before it.
// clang-format off
#include <windows.h>
#include <odbcinst.h>
// clang-format on
#include <oleauto.h>

#include <algorithm>
#include <cstdio>
#include <iostream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace {

std::map<std::string, IDispatch*> objects;

std::wstring Wide(const std::string& utf8) {
  std::wstring wide(utf8.size(), L'\0');
  wide.resize(static_cast<std::size_t>(
      MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()), wide.data(),
                          static_cast<int>(wide.size()))));
  return wide;
}

std::string Narrow(const std::wstring& wide, UINT codePage = CP_UTF8) {
  std::string narrow(wide.size() * 3, '\0');
  narrow.resize(static_cast<std::size_t>(
      WideCharToMultiByte(codePage, 0, wide.data(), static_cast<int>(wide.size()), narrow.data(),
                          static_cast<int>(narrow.size()), nullptr, nullptr)));
  return narrow;
}

std::string Hex(HRESULT code) {
  char text[9];
  std::snprintf(text, sizeof text, "%08lX", static_cast<unsigned long>(code));
  return text;
}

BSTR BstrOf(const std::wstring& text) {
  return SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
}

VARIANT Argument(const std::string& text) {
  VARIANT value{};
  if (text == "-") {
    V_VT(&value) = VT_ERROR;
    V_ERROR(&value) = DISP_E_PARAMNOTFOUND;
  } else if (text.starts_with('@')) {
    V_VT(&value) = VT_DISPATCH;
    V_DISPATCH(&value) = objects.at(text.substr(1));
    V_DISPATCH(&value)->AddRef();
  } else if (!text.empty() && text.find_first_not_of("-0123456789") == std::string::npos) {
    V_VT(&value) = VT_I4;
    V_I4(&value) = std::stol(text);
  } else {
    V_VT(&value) = VT_BSTR;
    V_BSTR(&value) = text.starts_with('*')
                         ? BstrOf(L"--" + std::wstring(std::stoul(text.substr(1)), L'x'))
                         : BstrOf(Wide(text));
  }
  return value;
}

void Drop(const std::string& name) {
  if (const auto object = objects.extract(name)) object.mapped()->Release();
}

std::string Call(WORD kind, IDispatch* object, const std::string& member,
                 const std::string& arguments) {
  std::vector<std::wstring> names{Wide(member)};
  std::vector<VARIANT> positional;
  std::vector<VARIANT> values;
  std::istringstream rest(arguments);
  for (std::string text; std::getline(rest, text, '|');) {
    const std::size_t named = text.find(":=");
    if (named == std::string::npos) {
      positional.push_back(Argument(text));
    } else {
      names.push_back(Wide(text.substr(0, named)));
      values.push_back(Argument(text.substr(named + 2)));
    }
  }
  values.insert(values.end(), positional.rbegin(), positional.rend());

  std::vector<wchar_t*> pointers(names.size());
  std::transform(names.begin(), names.end(), pointers.begin(),
                 [](std::wstring& text) { return text.data(); });
  std::vector<DISPID> ids(names.size());
  HRESULT code = object->GetIDsOfNames(IID_NULL, pointers.data(), static_cast<UINT>(names.size()),
                                       LOCALE_USER_DEFAULT, ids.data());
  if (FAILED(code)) return Hex(code);
  const DISPID id = ids[0];
  ids.erase(ids.begin());
  if ((kind & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0) ids = {DISPID_PROPERTYPUT};

  DISPPARAMS given{values.data(), ids.data(), static_cast<UINT>(values.size()),
                   static_cast<UINT>(ids.size())};
  VARIANT result{};
  EXCEPINFO error{};
  code = object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, kind, &given, &result, &error, nullptr);
  for (VARIANT& value : values) VariantClear(&value);
  if (code == DISP_E_EXCEPTION) {
    return Hex(error.scode) + " " + Narrow(error.bstrSource) + ": " + Narrow(error.bstrDescription);
  }
  if (FAILED(code)) return Hex(code);
  if (V_VT(&result) == VT_EMPTY) return "ok";
  if (V_VT(&result) == VT_DISPATCH) {
    Drop("it");
    objects["it"] = V_DISPATCH(&result);
    return "ok";
  }
  return SUCCEEDED(VariantChangeType(&result, &result, 0, VT_BSTR)) ? Narrow(V_BSTR(&result)) : "?";
}

std::string Run(const std::string& line) {
  std::istringstream words(line);
  std::string verb;
  std::string name;
  std::string member;
  std::string rest;
  words >> verb >> name;
  if (verb == "dsn") {
    std::getline(words >> std::ws, member, ':');
    std::getline(words, rest);
    std::replace(rest.begin(), rest.end(), '|', '\0');
    rest = Narrow(Wide(rest), CP_ACP) + std::string(2, '\0');
    const auto request = static_cast<WORD>(std::stoi(name));
    return SQLConfigDataSource(nullptr, request, member.c_str(), rest.c_str()) ? "ok" : "refused";
  }
  if (verb == "drop") {
    Drop(name);
    const FARPROC alive = GetProcAddress(GetModuleHandleW(L"wineado"), "ObjectsAlive");
    return std::to_string(alive());
  }
  words >> member;
  if (verb == "new") {
    CLSID id;
    HRESULT code = CLSIDFromProgID(Wide(member).c_str(), &id);
    if (SUCCEEDED(code)) {
      code = CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch,
                              reinterpret_cast<void**>(&objects[name]));
    }
    return FAILED(code) ? Hex(code) : "ok";
  }
  std::getline(words >> std::ws, rest);
  const std::map<std::string, WORD> kinds{
      // A caller that could use a result asks for a method or a property alike.
      {"call", static_cast<WORD>(DISPATCH_METHOD | DISPATCH_PROPERTYGET)},
      {"get", static_cast<WORD>(DISPATCH_PROPERTYGET)},
      {"put", static_cast<WORD>(DISPATCH_PROPERTYPUT)},
      {"bind", static_cast<WORD>(DISPATCH_PROPERTYPUTREF)}};
  return Call(kinds.at(verb), objects.at(name), member, rest);
}

}  // namespace

int main() {
  CoInitialize(nullptr);
  for (std::string line; std::getline(std::cin, line);) {
    if (line.ends_with('\r')) line.pop_back();
    std::cout << Run(line) << std::endl;
  }
}
