#pragma once

#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

/// The rules of texts and of the configuration once more, in the plainest way: slow, and sharing
/// nothing with the code that they are held against.
namespace talu::naive {

/// Stands for any run-time error.
struct Error {};

inline std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  std::string line;
  bool open = false;
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text[at] != '\r') {
      line += text[at];
      open = true;
      continue;
    }
    lines.push_back(line);
    line.clear();
    open = false;
    if (at + 1 < text.size() && text[at + 1] == '\n') ++at;
  }
  if (open) lines.push_back(line);
  return lines;
}

inline std::string Trim(const std::string& text) {
  std::size_t begin = 0;
  std::size_t end = text.size();
  while (begin < end && text[begin] == ' ') ++begin;
  while (end > begin && text[end - 1] == ' ') --end;
  return text.substr(begin, end - begin);
}

/// The letters A to Z only: no other character has a capital among them.
inline std::string Upper(std::string text) {
  for (char& c : text) c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
  return text;
}

/// Position, from 1, of the first `find` at or behind `from`; 0 without one.
inline long In(long from, const std::string& text, const std::string& find) {
  if (from < 1) throw Error{};
  for (long at = from; at <= static_cast<long>(text.size()); ++at) {
    bool equal = true;
    for (std::size_t i = 0; i < find.size() && equal; ++i) {
      const std::size_t there = static_cast<std::size_t>(at) - 1 + i;
      equal = there < text.size() && text[there] == find[i];
    }
    if (equal) return at;
  }
  return 0;
}

inline bool Has(const std::string& text, const std::string& find) {
  return In(1, text, find) > 0;
}

inline std::string Cut(const std::string& text, long from, long length) {
  if (from < 1 || length < 0) throw Error{};
  std::string part;
  for (long at = from; at < from + length && at <= static_cast<long>(text.size()); ++at)
    part += text[static_cast<std::size_t>(at) - 1];
  return part;
}

inline std::vector<std::string> Split(const std::string& text, char separator) {
  if (text.empty()) return {};
  std::vector<std::string> pieces{""};
  for (const char c : text) {
    if (c == separator) {
      pieces.emplace_back();
    } else {
      pieces.back() += c;
    }
  }
  return pieces;
}

inline std::string At(const std::vector<std::string>& pieces, std::size_t index) {
  if (index >= pieces.size()) throw Error{};
  return pieces[index];
}

/// The value lines that a key has in a configuration, blocks of other keys that count for it
/// included; `skipBlank` passes over blank lines, as counting does.
inline std::vector<std::string> Values(const std::string& text, const std::string& key,
                                       bool skipBlank) {
  std::vector<std::string> values;
  bool found = false;
  bool inBlock = false;
  for (const std::string& line : Lines(text)) {
    if (skipBlank && Trim(line).empty()) continue;
    if (key.substr(0, line.size()) == line) found = true;
    if (!found) continue;
    if (line == "}") {
      inBlock = false;
      found = false;
    }
    if (inBlock) values.push_back(line);
    if (line == "{") inBlock = true;
  }
  return values;
}

inline std::string Block(const std::string& key, const std::vector<std::string>& values) {
  std::string text = key + "\r\n{\r\n";
  for (const std::string& value : values) text += value + "\r\n";
  return text + "}\r\n";
}

/// Ends the fuzzer with a message when two readings differ.
inline void Same(const std::string& wizard, const std::string& naive, const char* what) {
  if (wizard == naive) return;
  std::fprintf(stderr, "%s: \"%s\", but naively \"%s\"\n", what, wizard.c_str(), naive.c_str());
  std::abort();
}

inline void Same(const std::vector<std::string>& wizard, const std::vector<std::string>& naive,
                 const char* what) {
  for (std::size_t at = 0; at < wizard.size() && at < naive.size(); ++at)
    Same(wizard[at], naive[at], what);
  Same(std::to_string(wizard.size()), std::to_string(naive.size()), what);
}

}  // namespace talu::naive
