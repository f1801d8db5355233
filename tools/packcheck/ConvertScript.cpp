#include "ConvertScript.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <optional>
#include <string>

#include "CheckPack.h"
#include "ConvertBatch.h"
#include "database/ScriptReader.h"
#include "runtime/TextFunctions.h"
#include "sql/Lexer.h"

namespace talu::packcheck {
namespace {

using sql::TokenKind;

/// How often a batch may be written out for "GO 5", and the bytes that may come of it.
constexpr int kMostRepeats = 100;
constexpr std::size_t kMostRepeated = 1 << 20;

/// A line that ends a batch for the server's own tools.
struct GoLine {
  int Count = 1;
  /// What stands behind it.
  std::string_view Comment;
};

/// Reads "GO", "GO 5", "GO;", "GO -- text".
std::optional<GoLine> ReadGo(std::string_view line) {
  std::string_view rest = Stripped(line);
  if (!EqualsUpper(rest.substr(0, 2), "GO")) return {};
  rest.remove_prefix(2);
  if (!rest.empty() && std::string_view(" \t;-/").find(rest.front()) == std::string_view::npos) {
    return {};
  }
  GoLine go;
  rest = Stripped(rest);
  const auto [end, error] = std::from_chars(rest.data(), rest.data() + rest.size(), go.Count);
  if (error == std::errc::result_out_of_range) go.Count = std::numeric_limits<int>::max();
  go.Count = std::max(go.Count, 0);
  rest = Stripped(rest.substr(static_cast<std::size_t>(end - rest.data())));
  while (rest.starts_with(';')) rest = Stripped(rest.substr(1));
  if (rest.empty()) return go;
  sql::Lexer lexer(rest);
  const sql::Token comment = lexer.NextOrComment();
  if (comment.Kind != TokenKind::Comment || !comment.IsClosed || comment.Raw != rest) return {};
  go.Comment = rest;
  return go;
}

/// A line of a text, with the bytes that it takes.
struct TextLine {
  std::size_t At = 0;
  std::string_view Text;

  std::size_t End() const { return At + Text.size(); }
};

/// The lines of a text that are not blank.
template <class Take>
void ForEachLine(std::string_view text, std::size_t from, const Take& take) {
  LineScanner lines(text.substr(from));
  std::string_view line;
  while (lines.Next(line)) {
    if (TrimView(line).empty()) continue;
    if (!take(TextLine{static_cast<std::size_t>(line.data() - text.data()), line})) return;
  }
}

std::size_t BehindLine(std::string_view text, const TextLine& line) {
  return std::min(line.End() + kCrLf.size(), text.size());
}

class ScriptMender {
 public:
  explicit ScriptMender(std::string_view text) : text_(text) {}

  ScriptMends Mend() {
    batch_ = PutDirectiveOnTop();
    firstEdit_ = edits_.size();
    ForEachLine(text_, batch_, [this](const TextLine& line) {
      TakeLine(line);
      return true;
    });
    if (gathered_ && open_.Kind == TokenKind::End) {
      FinishBatch(text_.size());
      const bool ended = text_.ends_with(kCrLf);
      edits_.push_back({text_.size(), 0, ended ? "GO\r\n" : "\r\nGO\r\n", "the last GO"});
    }
    if (open_.Kind != TokenKind::End) {
      left_.resize(leftBefore_);  // they are of what is open
      Leave(openedAt_, "what begins here is not closed, so all that follows is a part of it");
    }
    std::ranges::stable_sort(edits_, {}, &Edit::At);
    return {std::move(edits_), std::move(left_)};
  }

 private:
  /// Sees to it that the first line is the directive; returns where the batches begin.
  std::size_t PutDirectiveOnTop() {
    std::size_t begin = 0;
    std::optional<TextLine> directive;
    bool first = true;
    ForEachLine(text_, 0, [&](const TextLine& line) {
      const bool found = StartsUpper(line.Text, kBatchDirective);
      if (found || (first && ContainsUpper(line.Text, kBatchDirective))) {
        directive = line;
        if (first) begin = BehindLine(text_, line);
        return false;
      }
      first = false;
      return true;
    });
    if (first || begin > 0) return begin;  // a blank file stays one
    std::string top = "--taluGO";
    if (directive) {
      top = Stripped(directive->Text);
      edits_.push_back({directive->At, BehindLine(text_, *directive) - directive->At, "", ""});
    }
    edits_.insert(edits_.begin(), {0, 0, top + "\r\n", kDirective});
    return 0;
  }

  static bool StartsUpper(std::string_view line, std::string_view upper) {
    return EqualsUpper(Stripped(line).substr(0, upper.size()), upper);
  }

  void TakeLine(const TextLine& line) {
    if (ContainsUpper(line.Text, kBatchDirective)) return;  // goes nowhere
    const bool ends = EqualsUpper(TrimView(line.Text), "GO");
    if (open_.Kind == TokenKind::End) {
      if (const std::optional<GoLine> go = ReadGo(line.Text)) {
        TakeGo(line, *go, ends);
        return;
      }
    } else if (ends && open_.Kind == TokenKind::Comment) {
      const std::size_t word = line.Text.find_first_not_of(' ');
      edits_.push_back({line.At + word, 0, "-- ", "GO in a comment"});
    } else if (ends) {
      isCut_ = true;
      Leave(line.At, "this GO ends the batch, in the middle of a text or a name");
    }
    gathered_ = true;
    sql::Lexer lexer(line.Text, open_);
    for (sql::Token token = lexer.NextOrComment(); token.Kind != TokenKind::End;
         token = lexer.NextOrComment()) {
      if (!token.IsClosed && token.Opening > 0) {
        openedAt_ = line.At + token.At;
        leftBefore_ = left_.size();
      }
      names_ = names_ || token.IsOneOf({"USE", "DATABASE", "LOGIN"});
    }
    open_ = lexer.Open();
  }

  void TakeGo(const TextLine& line, const GoLine& go, bool ends) {
    FinishBatch(line.At);
    const std::string batch = go.Count > 1 ? MendedBatch(line.At) : "";
    const auto copies = static_cast<std::size_t>(std::max(go.Count - 1, 0));
    const bool tooMuch =
        go.Count > kMostRepeats || (copies > 0 && batch.size() > kMostRepeated / copies);
    if (tooMuch || go.Count == 0) {
      ends = true;
      Leave(line.At, std::string(Stripped(line.Text)) + " stays, which does not end its batch: " +
                         (tooMuch ? "write that out, or loop" : "write GO, or take both out"));
    }
    if (!ends) {
      std::string lines = "GO";
      for (std::size_t i = 0; i < copies; ++i) lines.append(kCrLf).append(batch).append("GO");
      const std::string comment(go.Comment);
      if (!comment.empty() && names_) {
        lines += "\r\n" + comment + "\r\nGO";  // it would be read as a part of the name
      } else if (!comment.empty()) {
        lines.insert(0, comment + "\r\n");
      }
      edits_.push_back({line.At, line.Text.size(), lines, "GO alone on its line"});
    }
    firstEdit_ = edits_.size();
    batch_ = BehindLine(text_, line);
    gathered_ = names_ = isCut_ = false;
  }

  void Leave(std::size_t at, const std::string& what) {
    const auto number = 1 + std::ranges::count(text_.substr(0, at), '\n');
    left_.push_back("line " + std::to_string(number) + ": " + what);
  }

  void FinishBatch(std::size_t end) {
    if (names_ && !isCut_) AddBatchEdits(text_, batch_, end, edits_);
  }

  /// The batch up to `end` with its edits.
  std::string MendedBatch(std::size_t end) const {
    std::vector<Edit> edits(edits_.begin() + static_cast<std::ptrdiff_t>(firstEdit_), edits_.end());
    for (Edit& edit : edits) edit.At -= batch_;
    std::ranges::stable_sort(edits, {}, &Edit::At);
    return Applied(text_.substr(batch_, end - batch_), edits);
  }

  static constexpr const char* kDirective = "the directive on top";

  std::string_view text_;
  std::vector<Edit> edits_;
  std::vector<std::string> left_;
  // The batch being read: where it and its edits begin, whether it has lines, whether it may name a
  // database or a login, and whether a GO within a text ends it early.
  std::size_t batch_ = 0;
  std::size_t firstEdit_ = 0;
  bool gathered_ = false;
  bool names_ = false;
  bool isCut_ = false;
  sql::Unclosed open_;
  // Where that begins, and what was left before it.
  std::size_t openedAt_ = 0;
  std::size_t leftBefore_ = 0;
};

}  // namespace

bool IsReadByLines(std::string_view text, bool lineMode) {
  bool byLines = false;
  bool first = true;
  ForEachLine(text, 0, [&](const TextLine& line) {
    if (ContainsUpper(line.Text, kBatchDirective)) return false;
    if (ContainsUpper(line.Text, kLineDirective)) byLines = true;
    if (first && lineMode) byLines = true;
    first = false;
    return !byLines;
  });
  return byLines;
}

ScriptMends MendsOfScript(std::string_view text, bool lineMode) {
  if (TrimView(text).empty() || IsReadByLines(text, lineMode)) return {};
  return ScriptMender(text).Mend();
}

}  // namespace talu::packcheck
