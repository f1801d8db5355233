#include "ConvertFile.h"

#include <algorithm>
#include <map>
#include <ostream>
#include <stdexcept>
#include <utility>

#include "ConvertLetters.h"
#include "ConvertScript.h"

namespace talu::packcheck {
namespace {

/// Letters that are listed, and lines that are named for each.
constexpr std::size_t kListed = 10;

std::string CodePageName(int number) {
  return number == 65001 ? "UTF-8" : "code page " + std::to_string(number);
}

std::string Counted(std::size_t count, const std::string& thing) {
  return std::to_string(count) + " " + thing + (count == 1 ? "" : "s");
}

bool Matters(const MissingLetter& letter) {
  return !letter.Lines.empty();
}

void WriteLetters(const ConvertedFile& file, const ConvertOptions& options, std::ostream& out) {
  std::size_t inComments = 0;
  std::size_t listed = 0;
  std::size_t mattering = 0;
  for (const MissingLetter& letter : file.Missing) {
    inComments += letter.InComments;
    if (!Matters(letter)) continue;
    if (++mattering > kListed) continue;
    ++listed;
    out << "    ";
    if (IsSeen(letter.Character)) out << '"' << letter.Letter << "\" ";
    out << "(" << CodeOf(letter.Character) << "), line";
    for (std::size_t i = 0; i < std::min(letter.Lines.size(), kListed); ++i) {
      out << (i > 0 ? ", " : " ") << letter.Lines[i];
    }
    if (letter.Character == 0xFFFD) out << ": stands for letters that were lost before";
    if (letter.Lines.size() > kListed) out << " and " << letter.Lines.size() - kListed << " more";
    out << '\n';
  }
  if (mattering > listed) out << "    and " << Counted(mattering - listed, "letter") << " more\n";
  if (inComments > 0) {
    out << "    " << Counted(inComments, "letter") << " that " << CodePageName(options.CodePage)
        << " lacks in comments, where it does not matter\n";
  }
  if (file.LeftBecause.empty() || mattering == 0) return;
  for (const int number : CodePagesFor(file.Decoded.Text)) {
    out << "    code page " << number << " has them all: if that is the machines', --code-page "
        << number << '\n';
  }
  out << "    NCHAR(n) in place of a letter works everywhere; --replace-letters makes each a ?\n";
}

/// Finds the letters that the code page lacks, and mends what can be mended.
void PutLettersInOtherWords(ConvertedFile& file, FileKind kind, const CodePage& codePage) {
  const std::string& text = file.Decoded.Text;
  file.Missing = MissingLetters(text, codePage);
  if (kind == FileKind::Configuration || !std::ranges::any_of(file.Missing, Matters)) return;
  const std::vector<Edit> letters = LetterEdits(text, file.Missing);
  if (letters.empty()) return;
  // A batch that is written out for "GO 2" has them too.
  for (Edit& edit : file.Edits) {
    edit.New = Applied(edit.New, LetterEdits(edit.New, file.Missing));
  }
  file.Missing = MissingLetters(Applied(text, letters), codePage);
  const auto middle = static_cast<std::ptrdiff_t>(file.Edits.size());
  file.Edits.insert(file.Edits.end(), letters.begin(), letters.end());
  std::ranges::inplace_merge(file.Edits, file.Edits.begin() + middle, {}, &Edit::At);
}

}  // namespace

ConvertedFile Convert(std::string bytes, FileKind kind, const ConvertOptions& options) {
  ConvertedFile file;
  file.Before = std::move(bytes);
  file.After = file.Before;
  const CodePage codePage(options.CodePage);
  try {
    const bool isScript = kind != FileKind::Configuration;
    file.Decoded = Decode(file.Before, codePage, options.CodePage, isScript);
  } catch (const std::runtime_error& error) {
    file.LeftBecause = error.what();
    return file;
  }
  const std::string& text = file.Decoded.Text;
  if (kind != FileKind::Configuration) {
    ScriptMends mends = MendsOfScript(text, kind == FileKind::ScriptBehindLines);
    file.Edits = std::move(mends.Edits);
    file.Left = std::move(mends.Left);
  }
  if (!file.Decoded.Encoding.empty()) PutLettersInOtherWords(file, kind, codePage);
  if (!options.ReplaceLetters && std::ranges::any_of(file.Missing, Matters)) {
    file.LeftBecause = "it has letters that " + CodePageName(options.CodePage) + " lacks";
    return file;
  }
  file.After = codePage.FromText(Applied(text, file.Edits));
  return file;
}

void WriteAccount(const ConvertedFile& file, const std::string& from, const std::string& to,
                  const ConvertOptions& options, std::ostream& out) {
  const std::string is = CodePageName(options.CodePage);
  const std::string was(file.Decoded.Encoding.empty() ? is : file.Decoded.Encoding);
  if (!file.Edits.empty() && file.LeftBecause.empty()) {
    out << "--- " << from << "\n+++ " << to << "\n";
    WriteDiff(file.Decoded.Text, file.Edits, out);
  }
  out << from << ": ";
  if (!file.LeftBecause.empty()) {
    out << "left as it is: " << file.LeftBecause << '\n';
  } else if (!file.IsChanged()) {
    out << (file.Left.empty() ? "nothing to mend\n" : "nothing is mended\n");
  } else {
    std::map<std::string, std::size_t> counts;
    for (const Edit& edit : file.Edits) ++counts[edit.What];
    counts.erase("");
    std::string done;
    if (was != is) done += ", " + was + " is " + is + " now";
    if (was == is && !file.Decoded.Encoding.empty()) done += ", the byte-order mark is gone";
    if (file.Decoded.OtherLineEnds > 0) {
      const std::size_t count = file.Decoded.OtherLineEnds;
      done += ", " + Counted(count, "line") + (count == 1 ? " ends" : " end") + " in CR LF now";
    }
    for (const auto& [what, count] : counts) {
      done += ", " + what + (count > 1 ? " (" + std::to_string(count) + " times)" : "");
    }
    out << done.substr(2) << '\n';
  }
  for (std::size_t i = 0; i < std::min(file.Left.size(), kListed); ++i) {
    out << "    " << file.Left[i] << '\n';
  }
  if (file.Left.size() > kListed) {
    out << "    and " << Counted(file.Left.size() - kListed, "line") << " more\n";
  }
  WriteLetters(file, options, out);
}

}  // namespace talu::packcheck
