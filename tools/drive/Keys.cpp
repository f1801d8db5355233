#include "Keys.h"

#include <windows.h>

#include <algorithm>
#include <map>
#include <string>

namespace talu::drive {

namespace {

const std::map<std::string, unsigned short> kModifiers = {
    {"ALT", VK_MENU}, {"CTRL", VK_CONTROL}, {"SHIFT", VK_SHIFT}};

const std::map<std::string, unsigned short> kNamedKeys = {
    {"TAB", VK_TAB},       {"SPACE", VK_SPACE},   {"ENTER", VK_RETURN}, {"ESC", VK_ESCAPE},
    {"UP", VK_UP},         {"DOWN", VK_DOWN},     {"LEFT", VK_LEFT},    {"RIGHT", VK_RIGHT},
    {"HOME", VK_HOME},     {"END", VK_END},       {"PAGEUP", VK_PRIOR}, {"PAGEDOWN", VK_NEXT},
    {"DELETE", VK_DELETE}, {"BACKSPACE", VK_BACK}};

std::optional<unsigned short> ReadKey(const std::string& name) {
  const bool letter = name.size() == 1 && name[0] >= 'A' && name[0] <= 'Z';
  const bool digit = name.size() == 1 && name[0] >= '0' && name[0] <= '9';
  // The codes of letters and digits are their ASCII codes.
  if (letter || digit) return static_cast<unsigned short>(name[0]);
  for (unsigned short n = 1; n <= 12; ++n) {
    if (name == "F" + std::to_string(n)) return static_cast<unsigned short>(VK_F1 + n - 1);
  }
  const auto named = kNamedKeys.find(name);
  return named == kNamedKeys.end() ? std::nullopt : std::optional(named->second);
}

}  // namespace

std::optional<Chord> ReadChord(std::string_view text) {
  std::string rest(text);
  std::transform(rest.begin(), rest.end(), rest.begin(),
                 [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; });
  Chord chord;
  for (auto plus = rest.find('+'); plus != std::string::npos; plus = rest.find('+')) {
    const auto modifier = kModifiers.find(rest.substr(0, plus));
    if (modifier == kModifiers.end()) return std::nullopt;
    chord.push_back(modifier->second);
    rest.erase(0, plus + 1);
  }
  const auto key = ReadKey(rest);
  if (!key) return std::nullopt;
  chord.push_back(*key);
  return chord;
}

}  // namespace talu::drive
