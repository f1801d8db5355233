// Late-binds objects by name and calls them, with the wizard's own adapters, as a script on
// standard input says, one call a line, and answers each line with what came back:
//
//   new NAME CLASS                    makes an object
//   call|put|bind NAME MEMBER ARGUMENTS
//                                     an object that comes back has the name `it`
//   drop NAME                         lets an object go; answers how many are alive
//   dsn REQUEST DRIVER:ATTRIBUTES     SQLConfigDataSource; "|" stands for the NUL between pairs
//
// Arguments are separated by "|": a whole number, "-" (left out), "@NAME" (an object), "*N" (a
// comment of N characters), else text. `bind` puts by reference. An error is its number,
// hexadecimal where it is negative, and what the object says of it.

#include <algorithm>
#include <cstdio>
#include <iostream>
#include <map>
#include <sstream>

#include "platform/win32/LateBound.h"
#include "platform/win32/Text.h"
#include "platform/win32/Win32OdbcInstaller.h"
#include "runtime/RuntimeError.h"

namespace talu {
namespace {

std::map<std::string, Variant> objects;

void Keep(const std::string& name, IDispatch* object) {
  const Variant kept = Variant::Object(object);
  objects.erase(name);
  objects.emplace(name, kept);
}

std::string Make(const std::string& name, const std::string& className) {
  CLSID id;
  void* object = nullptr;
  if (FAILED(CLSIDFromProgID(Wide(className).c_str(), &id)) ||
      FAILED(CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, &object))) {
    return "no such class";
  }
  Keep(name, static_cast<IDispatch*>(object));
  static_cast<IDispatch*>(object)->Release();
  return "ok";
}

Variant Argument(const std::string& text) {
  if (text == "-") return Variant::Missing();
  if (text.starts_with('@')) return objects.at(text.substr(1));
  if (text.starts_with('*')) return "--" + std::string(std::stoul(text.substr(1)), 'x');
  if (!text.empty() && text.find_first_not_of("-0123456789") == std::string::npos)
    return std::stoi(text);
  return text;
}

std::string Call(const std::string& verb, LateBound object, const std::string& member,
                 const std::string& given) {
  std::vector<Variant> arguments;
  std::istringstream texts(given);
  for (std::string text; std::getline(texts, text, '|');) arguments.push_back(Argument(text));
  if (verb == "put") object.Put(member.c_str(), arguments.at(0));
  if (verb == "bind") object.PutRef(member.c_str(), LateBound(arguments.at(0)));
  if (verb != "call") return "ok";
  const Variant result = object.Get(member.c_str(), arguments);
  if (result.AsObject() != nullptr) Keep("it", result.AsObject());
  return result.AsObject() != nullptr || result.Raw()->vt == VT_EMPTY ? "ok" : result.Text();
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
    const CodePage ofThisMachine(CP_ACP);
    Win32OdbcInstaller odbc(ofThisMachine);
    return odbc.SQLConfigDataSource(std::stoi(name), member, rest) ? "ok" : "refused";
  }
  if (verb == "drop") {
    objects.erase(name);
    return std::to_string(GetProcAddress(GetModuleHandleW(L"wineado"), "ObjectsAlive")());
  }
  words >> member;
  if (verb == "new") return Make(name, member);
  std::getline(words >> std::ws, rest);
  try {
    return Call(verb, LateBound(objects.at(name)), member, rest);
  } catch (const RuntimeError& error) {
    char number[12];
    std::snprintf(number, sizeof number, error.Number < 0 ? "%08lX" : "%ld",
                  static_cast<long>(error.Number));
    return number + (error.Source.empty() ? "" : " " + error.Source + ": " + error.Description);
  }
}

}  // namespace
}  // namespace talu

int main() {
  CoInitialize(nullptr);
  for (std::string line; std::getline(std::cin, line);) {
    if (line.ends_with('\r')) line.pop_back();
    std::cout << talu::Run(line) << std::endl;
  }
}
