#include <algorithm>
#include <optional>
#include <set>

#include "runtime/TextFunctions.h"
#include "takeback/Record.h"

namespace talu {
namespace {

/// The server's limit, in units of UTF-16.
constexpr Position kLongestName = 128;

bool IsDigit(char character) {
  return character >= '0' && character <= '9';
}

/// A letter of any script counts: the name is sent in brackets.
bool IsLetter(char character) {
  const auto byte = static_cast<unsigned char>(character);
  return byte >= 0x80 || (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z') ||
         byte == '_';
}

bool IsRegular(std::string_view name) {
  if (name.empty() || !IsLetter(name[0])) return false;
  return std::ranges::all_of(name, [](char character) {
    return IsLetter(character) || IsDigit(character) || character == '@' || character == '$' ||
           character == '#';
  });
}

/// The name that stands between the quotes, where a doubled closing one is one of the name.
std::optional<std::string> Unquoted(std::string_view text, char closing) {
  std::string name;
  for (std::size_t at = 1; at < text.size(); ++at) {
    if (text[at] == closing) {
      if (at + 1 == text.size()) return name;
      if (text[++at] != closing) return std::nullopt;
    }
    name += text[at];
  }
  return std::nullopt;
}

/// The name as the server knows it.
std::optional<std::string> NameIn(std::string_view text) {
  std::optional<std::string> name;
  if (text.starts_with('[')) {
    name = Unquoted(text, ']');
  } else if (text.starts_with('"')) {
    name = Unquoted(text, '"');
  } else if (IsRegular(text)) {
    name = std::string(text);
  }
  const auto isControl = [](char character) { return static_cast<unsigned char>(character) < ' '; };
  if (!name || TrimView(*name).empty() || Length(*name) > kLongestName ||
      std::ranges::any_of(*name, isControl)) {
    return std::nullopt;
  }
  return name;
}

/// A count of 16 bits, as the wizard writes it.
std::optional<std::size_t> CountIn(std::string_view text) {
  if (text.empty() || text.size() > 5 || !std::ranges::all_of(text, IsDigit)) return std::nullopt;
  return std::stoul(std::string(text));
}

}  // namespace

RecordedNames ReadNames(const RecordLine& line) {
  const std::vector<std::string> fields = Split(line.Value, ',');
  const std::optional<std::size_t> count = CountIn(fields.empty() ? "" : fields[0]);
  if (line.CutOff || !count || *count > fields.size() - 1) return {{}, {line.Value}};
  RecordedNames read;
  std::set<std::string> seen;
  for (std::size_t i = 1; i < fields.size(); ++i) {
    const std::string_view field = TrimView(fields[i]);
    if (field.empty()) continue;
    const std::optional<std::string> name = NameIn(field);
    std::vector<std::string>& list = name ? read.Names : read.Unreadable;
    const std::string shown = name.value_or(std::string(field));
    if (seen.insert(UCase(shown)).second) list.push_back(shown);
  }
  return read;
}

}  // namespace talu
