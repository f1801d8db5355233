#include "runtime/JsonText.h"

#include <algorithm>

#include "runtime/Unicode.h"

namespace talu {
namespace {

bool IsPlain(char character) {
  const auto byte = static_cast<unsigned char>(character);
  return byte >= 0x20 && character != '"' && character != '\\';
}

}  // namespace

void AppendJson(std::string& json, std::string_view text) {
  constexpr char kHex[] = "0123456789abcdef";
  const std::string characters = OnlyCharacters(text);
  json.reserve(json.size() + characters.size() + 2);
  json += '"';
  for (auto at = characters.begin(); at != characters.end(); ++at) {
    const auto end = std::find_if_not(at, characters.end(), IsPlain);
    json.append(at, end);
    if (end == characters.end()) break;
    at = end;
    const auto byte = static_cast<unsigned char>(*at);
    if (byte < 0x20) {
      json += "\\u00";
      json += kHex[byte >> 4];
      json += kHex[byte & 15];
    } else {
      json += '\\';
      json += *at;
    }
  }
  json += '"';
}

}  // namespace talu
