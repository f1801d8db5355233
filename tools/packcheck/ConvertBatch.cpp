#include "ConvertBatch.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>

#include "CheckPack.h"
#include "CheckSql.h"
#include "database/BatchNames.h"
#include "runtime/RuntimeError.h"
#include "runtime/TextFunctions.h"
#include "sql/BatchShape.h"
#include "sql/Lexer.h"

namespace talu::packcheck {
namespace {

using sql::Token;
using sql::TokenKind;

constexpr std::array<std::string_view, 4> kSystemDatabases = {"MASTER", "MODEL", "MSDB", "TEMPDB"};

/// Continue as other statements: USE HINT, ALTER DATABASE SCOPED ..., GRANT CREATE DATABASE TO.
bool IsName(const Token& token) {
  return token.IsName() &&
         !token.IsOneOf({"HINT", "PLAN", "SCOPED", "AUDIT", "ENCRYPTION", "TO", "CURRENT", "IF"});
}

std::size_t EndOf(const Token& token) {
  return token.At + token.Raw.size();
}

class BatchMender {
 public:
  BatchMender(std::string_view text, std::size_t begin, std::size_t end, std::vector<Edit>& edits)
      : text_(text), begin_(begin), end_(end), edits_(edits) {}

  void Mend() {
    sql::Lexer lexer(text_, begin_, end_);
    MendUse(lexer);
    MendUseOfCreated(lexer);
    for (Token token = lexer.NextOrComment(); token.Kind != TokenKind::End;
         token = lexer.NextOrComment()) {
      if (token.Kind == TokenKind::Comment) continue;
      shape_.Take(token, 0);
      if (token.IsOneOf({"CREATE", "ALTER"})) MendStatement(token, lexer);
      if (token.Is("FILENAME") && createsDatabase_) MendFileName(token, lexer);
    }
  }

 private:
  /// The statements USE with which the batch begins; leaves `lexer` behind them.
  void MendUse(sql::Lexer& lexer) {
    std::size_t from = begin_;
    while (true) {
      sql::Lexer ahead = lexer;
      const Token use = ahead.Next();
      const Token name = use.Is("USE") ? ahead.Next() : Token();
      if (!IsName(name)) return;
      std::size_t end = EndOf(name);
      lexer = ahead;
      Token next = ahead.NextOrComment();
      while (next.IsSymbol(";")) {
        end = EndOf(next);
        lexer = ahead;
        next = ahead.NextOrComment();
      }
      EditUse(from, use, name, end, next);
      from = end;
    }
  }

  void EditUse(std::size_t from, const Token& use, const Token& name, std::size_t end,
               const Token& next) {
    if (std::ranges::find(kSystemDatabases, BareName(name.Raw)) != kSystemDatabases.end()) {
      // The backup would take it for one of the pack's; it does not read small letters.
      if (use.Raw == "USE") {
        edits_.push_back(
            {use.At, use.Raw.size(), "use", "USE of a system database in small letters"});
      }
      return;
    }
    const bool last = next.Kind == TokenKind::End;
    if (last && IsBackedUpAs(Gathered(from, end_)) == name.Value()) return;
    const std::string comments = Gathered(from, use.At);
    // Quotes would be taken for a part of the name.
    const bool isQuoted = name.Raw.starts_with('"') && name.Raw.find(']') == std::string_view::npos;
    const std::string alone =
        "USE " + (isQuoted ? "[" + name.Value() + "]" : std::string(name.Raw));
    // A comment may hide it; some names are read wrong wherever they stand.
    const bool isReadable = IsBackedUpAs("\r\n" + alone) == name.Value();
    const bool isHidden = isReadable && IsBackedUpAs(comments + "\r\n" + alone) != name.Value();
    EditStatement(use, end, next, isHidden, alone);
  }

  /// Writes `alone` in place of the statement that begins with `word` and ends at `end`, before
  /// `next`, and ends the batch behind it, and before it.
  void EditStatement(const Token& word, std::size_t end, const Token& next, bool before,
                     const std::string& alone) {
    std::string lines = before ? BeforeIt(word.At) + "GO\r\n" + alone : alone;
    if (next.Kind != TokenKind::End) {
      lines += "\r\nGO";
      if (text_.substr(end, next.At - end).find('\n') == std::string_view::npos) {
        if (next.Is("GO")) return;  // which would end a batch at the beginning of a line
        lines += "\r\n";
        end = next.At;
      }
    }
    if (text_.substr(word.At, end - word.At) == lines) return;
    edits_.push_back({word.At, end - word.At, lines, kAlone});
  }

  /// CREATE DATABASE name ... USE name: the server looks for the database before it is made.
  void MendUseOfCreated(sql::Lexer lexer) {
    if (!lexer.Next().Is("CREATE") || !lexer.Next().Is("DATABASE")) return;
    const std::string created = BareName(lexer.Next().Raw);
    int depth = 0;
    for (Token token = lexer.Next(); token.Kind != TokenKind::End; token = lexer.Next()) {
      if (token.IsSymbol("(")) ++depth;
      if (token.IsSymbol(")")) --depth;
      if (!token.Is("USE") || depth != 0) continue;
      sql::Lexer ahead = lexer;
      const Token name = ahead.Next();
      if (!IsName(name) || BareName(name.Raw) != created) return;
      useOfCreated_ = token.At;
      std::size_t end = EndOf(name);
      Token next = ahead.NextOrComment();
      for (; next.IsSymbol(";"); next = ahead.NextOrComment()) end = EndOf(next);
      EditStatement(token, end, next, true, "USE " + std::string(name.Raw));
      return;
    }
  }

  /// What ends the line before a position; nothing where one begins.
  std::string BeforeIt(std::size_t at) const {
    return at == 0 || text_.substr(0, at).ends_with('\n') ? "" : "\r\n";
  }

  /// A part of the text as the build gathers it.
  std::string Gathered(std::size_t from, std::size_t end) const {
    // No name is that long, and what follows one is not a name.
    constexpr std::size_t kEnough = 4096;
    std::string batch;
    LineScanner lines(text_.substr(from, std::min(end - from, kEnough)));
    std::string_view line;
    while (lines.Next(line)) {
      if (!TrimView(line).empty()) AppendLine(batch, TrimView(line));
    }
    return batch;
  }

  static std::string IsBackedUpAs(const std::string& batch) {
    try {
      return BackedUpName(NamedDatabase(batch, "USE ").value_or(""));
    } catch (const RuntimeError&) {
      return "";
    }
  }

  /// CREATE DATABASE name, CREATE LOGIN name, ALTER DATABASE name: in capitals, on one line, with
  /// one blank, and a blank behind the name. A creation under a condition stays as it is: recorded,
  /// it would have what was there before dropped when the build fails.
  void MendStatement(const Token& verb, sql::Lexer lexer) {
    const Token thing = lexer.NextOrComment();
    const bool creates = verb.Is("CREATE");
    if (!thing.Is("DATABASE") && !(creates && thing.Is("LOGIN"))) return;
    const Token name = lexer.NextOrComment();
    if (!IsName(name) || (creates && IsConditional())) return;
    if (creates && thing.Is("DATABASE") && Contains(Batch(), "FILENAME") && !HasFolder()) return;
    if (creates && thing.Is("DATABASE")) createsDatabase_ = true;
    const std::string wanted = UCase(verb.Raw) + " " + UCase(thing.Raw) + " ";
    if (text_.substr(verb.At, name.At - verb.At) != wanted) {
      edits_.push_back({verb.At, name.At - verb.At, wanted, "keywords in capitals"});
    }
    // The backup finds a name in brackets behind ALTER DATABASE without a blank.
    if (!creates && name.Raw.starts_with('[')) return;
    sql::Lexer ahead = lexer;
    if (ahead.Next().Kind == TokenKind::End) return;
    const Token next = lexer.NextOrComment();
    if (next.At == useOfCreated_) return;
    const std::string_view gap = text_.substr(EndOf(name), next.At - EndOf(name));
    if (gap.starts_with(' ') && gap.find('\n') == std::string_view::npos) return;
    edits_.push_back({EndOf(name), gap.size(), " ", "the name and what follows in one line"});
  }

  bool IsConditional() const { return shape_.Conditional() != sql::BatchShape::Condition::None; }

  std::string_view Batch() const { return text_.substr(begin_, end_ - begin_); }

  /// Whether the build would find a folder in the batch. Where it does not, a database that is
  /// recorded, by FILENAME in capitals, fails the build.
  bool HasFolder() const {
    const std::size_t drive = Batch().find(":\\");
    return drive != std::string_view::npos && ContainsUpper(Batch().substr(drive), ".MDF");
  }

  void MendFileName(const Token& word, sql::Lexer lexer) {
    if (!lexer.Next().IsSymbol("=") || IsConditional() || !HasFolder()) return;
    if (word.Raw != "FILENAME") {
      edits_.push_back({word.At, word.Raw.size(), "FILENAME", "FILENAME in capitals"});
    }
    const Token path = lexer.Next();
    if (path.Kind != TokenKind::String || !path.IsClosed) return;
    const std::string_view inside = path.Inside();
    if (inside.size() < 4) return;
    const std::string_view ending = inside.substr(inside.size() - 4);
    if (!EqualsUpper(ending, ".MDF") || ending == ".mdf") return;
    edits_.push_back({EndOf(path) - 5, 4, ".mdf", ".mdf in small letters"});
  }

  static constexpr const char* kAlone = "USE as a batch of its own";

  std::string_view text_;
  std::size_t begin_;
  std::size_t end_;
  std::vector<Edit>& edits_;
  sql::BatchShape shape_;
  bool createsDatabase_ = false;
  /// Where the database that the batch creates is used.
  std::size_t useOfCreated_ = std::string_view::npos;
};

}  // namespace

void AddBatchEdits(std::string_view text, std::size_t begin, std::size_t end,
                   std::vector<Edit>& edits) {
  BatchMender(text, begin, end, edits).Mend();
}

}  // namespace talu::packcheck
