#include "ScriptTexts.h"

#include <algorithm>
#include <functional>
#include <set>
#include <utility>

#include "database/TypeScripts.h"
#include "runtime/TextFunctions.h"
#include "sql/Lexer.h"

namespace talu::packcheck {
namespace {

char Upper(char letter) {
  return letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter;
}

/// Whether a text has a word, in any case of its ASCII letters.
bool HasWord(std::string_view text, const std::string& word) {
  const std::boyer_moore_horspool_searcher searcher(
      word.begin(), word.end(), [](char letter) { return std::hash<char>()(Upper(letter)); },
      [](char one, char other) { return Upper(one) == Upper(other); });
  for (auto from = text.begin();;) {
    const auto [begin, end] = searcher(from, text.end());
    if (begin == text.end()) return false;
    const bool whole = (begin == text.begin() || !sql::IsWordPart(*(begin - 1))) &&
                       (end == text.end() || !sql::IsWordPart(*end));
    if (whole) return true;
    from = begin + 1;
  }
}

}  // namespace

ScriptTexts::ScriptTexts(CheckedPack& pack, const Configuration& configuration) : pack_(pack) {
  std::set<std::string> listed;
  for (const TypeScripts& scripts : kTypeScripts) {
    for (const CfgLine& line : configuration.Values(scripts.Key)) {
      const std::string file = std::string(scripts.Folder.substr(1)).append(line.Text);
      if (pack.HasFile(file) && listed.insert(UCase(file)).second) files_.push_back(file);
    }
  }
}

bool ScriptTexts::Lack(const std::string& name) const {
  if (name.empty() || files_.empty()) return false;
  return std::ranges::none_of(files_, [&](const std::string& file) {
    std::string text = *pack_.Read(file);
    return MarkOf(text).Utf16 || HasWord(pack_.Machine.CodePage.ToText(std::move(text)), name);
  });
}

}  // namespace talu::packcheck
