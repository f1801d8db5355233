#include "TokenCopier.h"

#include <algorithm>
#include <array>
#include <initializer_list>

#include "ColumnType.h"
#include "Messages.h"
#include "runtime/TextFunctions.h"
#include "sql/Names.h"

namespace talu::standin {
namespace {

struct RenamedFunction {
  std::string_view Name;
  std::string_view Sqlite;
};
constexpr std::array<RenamedFunction, 3> kRenamedFunctions = {{
    {"ISNULL", "ifnull"},
    {"NCHAR", "char"},
    {"SCOPE_IDENTITY", "last_insert_rowid"},
}};

struct SystemView {
  std::string_view Name;
  /// The same in every database; of the others only the current database's can be read.
  bool IsServerWide;
};
/// System views by their T-SQL names, with the schema where they have one.
constexpr std::array<SystemView, 21> kSystemViews = {{
    {"sys.databases", true},
    {"sys.sql_logins", true},
    {"sys.server_principals", true},
    {"sysdatabases", true},
    {"syslogins", true},
    {"sys.database_principals", false},
    {"sys.objects", false},
    {"sys.tables", false},
    {"sys.views", false},
    {"sys.procedures", false},
    {"sys.triggers", false},
    {"sys.columns", false},
    {"sys.identity_columns", false},
    {"sys.indexes", false},
    {"sys.schemas", false},
    {"sys.types", false},
    {"sysusers", false},
    {"sysobjects", false},
    {"syscolumns", false},
    {"information_schema.tables", false},
    {"information_schema.columns", false},
}};

const SystemView* FindSystemView(std::string_view name) {
  const auto* found = std::find_if(kSystemViews.begin(), kSystemViews.end(),
                                   [name](const auto& view) { return SameWord(view.Name, name); });
  return found == kSystemViews.end() ? nullptr : found;
}

/// SQLite's keywords that are ordinary names in T-SQL.
bool IsNameHere(const Token& token) {
  return token.IsOneOf({"LIMIT", "AUTOINCREMENT", "DEFERRABLE", "NOTNULL", "NOTHING", "RETURNING",
                        "USING", "INDEXED"});
}

}  // namespace

Range TakeGroup(Lexer& lexer) {
  const Token open = lexer.Next();
  int depth = 1;
  while (true) {
    const Token token = lexer.Next();
    if (token.Kind == TokenKind::End) Rewriter::FailAt(open);
    if (token.IsSymbol("(")) ++depth;
    if (token.IsSymbol(")") && --depth == 0) return {open.At, token.At + token.Raw.size()};
  }
}

void TokenCopier::Put(std::string_view text) {
  static constexpr std::string_view kBefore = "(,";
  static constexpr std::string_view kBehind = "),";
  if (kBefore.find(sql_.back()) == std::string_view::npos &&
      kBehind.find(text.front()) == std::string_view::npos) {
    sql_ += ' ';
  }
  sql_ += text;
}

std::string TokenCopier::CopyAll() {
  while (true) {
    const Token token = lexer_.Next();
    switch (token.Kind) {
      case TokenKind::Comment:  // the lexer skips them
      case TokenKind::End:
        if (!frames_.back().Closing.empty()) Put(frames_.back().Closing);
        return std::move(sql_);
      case TokenKind::Word:
        CopyWord(token);
        break;
      case TokenKind::Name:
        CopyNames(token);
        break;
      case TokenKind::String:
        if (last_.Is("LIKE") && token.Raw.find('[') != std::string_view::npos) {
          throw NotKnown("LIKE and [ ]");
        }
        if (token.Raw.find('\0') == std::string_view::npos) {
          Put(token.Raw.substr(token.Raw.find('\'')));
        } else {
          Put(QuoteText(token.Value()));
        }
        break;
      case TokenKind::Number:
        Put(token.Raw);
        break;
      case TokenKind::Binary:
        Put("X'");
        if (token.Raw.size() % 2 != 0) sql_ += '0';
        sql_.append(token.Raw.substr(2)).append("'");
        break;
      case TokenKind::Variable: {
        const auto value = environment_.Variable(token.Raw);
        if (!value) throw SqlFailure(message::kUndeclaredVariable(token.Raw), true);
        Put(*value);
        break;
      }
      case TokenKind::Symbol:
        CopySymbol(token);
        break;
    }
    last_ = token;
  }
}

void TokenCopier::CopySymbol(const Token& token) {
  if (token.IsSymbol("(")) {
    Put("(");
    Frame frame;
    frame.IsCast = last_.Is("CAST");
    frames_.push_back(frame);
  } else if (token.IsSymbol(")")) {
    if (frames_.size() == 1) Rewriter::FailAt(token);
    if (!frames_.back().Closing.empty()) Put(frames_.back().Closing);
    frames_.pop_back();
    Put(")");
  } else if (token.IsSymbol(",") && frames_.back().DropsRest) {
    SkipToClosing();
  } else if (token.IsSymbol("$") && lexer_.Peek().Kind == TokenKind::Number) {
    // money: a number as any other
  } else if (token.IsSymbol("+")) {
    Frame& frame = frames_.back();
    if (last_.Kind == TokenKind::String || lexer_.Peek().Kind == TokenKind::String) {
      frame.JoinsTexts = true;
    }
    Put(frame.JoinsTexts ? "||" : "+");
  } else {
    static constexpr std::array<std::string_view, 16> kKnown = {
        ",", ".", "=", "<", ">", "<=", ">=", "<>", "!=", "-", "*", "/", "%", "&", "|", "~"};
    if (std::find(kKnown.begin(), kKnown.end(), token.Raw) == kKnown.end()) {
      Rewriter::FailAt(token);
    }
    static constexpr std::string_view kEnds = ",=<>!";
    if (kEnds.find(token.Raw.front()) != std::string_view::npos) frames_.back().JoinsTexts = false;
    Put(token.Raw);
  }
}

void TokenCopier::CopyWord(const Token& token) {
  const Token next = lexer_.Peek();
  if (token.Raw.front() == '#') Rewriter::FailAt(token);  // temporary tables
  if (next.IsSymbol(".")) {
    CopyNames(token);
  } else if (next.IsSymbol("(")) {
    CopyFunction(token);
  } else if (token.Is("TOP") && last_.IsOneOf({"SELECT", "DISTINCT", "ALL"}) &&
             next.Kind == TokenKind::Number) {
    CopyTop();
  } else if (token.Is("CURRENT_TIMESTAMP")) {
    Put("getdate()");
  } else if (token.Is("AS") && frames_.back().IsCast) {
    const auto type = TakeType(lexer_);
    if (!type) throw SqlFailure(message::kUnknownType(1, next.Value()), true);
    Put("AS");
    Put(CastType(type->What));
  } else if (token.Raw.size() > 7 && FindSystemView(token.Raw) != nullptr) {
    PutSystemView(token.Raw, "");
  } else {
    if (token.IsOneOf({"FROM", "WHERE", "AND", "OR", "WHEN", "THEN", "ELSE", "AS", "ORDER"})) {
      frames_.back().JoinsTexts = false;
    }
    PutWord(token);
  }
}

/// Quotes a word that SQLite would not take as a name.
void TokenCopier::PutWord(const Token& token) {
  const bool needsQuotes =
      IsNameHere(token) || token.Raw.find_first_of("@$#") != std::string_view::npos;
  Put(needsQuotes ? QuoteName(token.Raw) : std::string(token.Raw));
}

void TokenCopier::CopyFunction(const Token& token) {
  if (token.Is("CONVERT")) {
    CopyConvert();
  } else if (token.Is("TOP") && last_.IsOneOf({"SELECT", "DISTINCT", "ALL"})) {
    CopyTop();
  } else if (token.Is("WITH") && last_.Kind != TokenKind::End) {
    TakeGroup(lexer_);  // a lock hint
  } else {
    if (token.Is("NCHAR")) frames_.back().JoinsTexts = true;
    for (const auto& renamed : kRenamedFunctions) {
      if (token.Is(renamed.Name)) {
        Put(renamed.Sqlite);
        return;
      }
    }
    Lexer ahead = lexer_;
    TakeGroup(ahead);
    const bool isTable = ahead.Peek().Is("AS") && (last_.Is("WITH") || last_.IsSymbol(","));
    if (!isTable && !token.Is("CAST") && !sql::IsReserved(token.Raw) &&
        !environment_.HasFunction(token.Raw)) {
      throw NotKnown(UCase(token.Raw) + "()");
    }
    PutWord(token);
  }
}

/// TOP 5, TOP (5): SQLite's LIMIT, at the end of the query.
void TokenCopier::CopyTop() {
  if (lexer_.Peek().IsSymbol("(")) {
    lexer_.Next();
    frames_.back().Closing = std::string("LIMIT ").append(lexer_.Peek().Raw);
    if (lexer_.Peek().Kind != TokenKind::Number) Rewriter::FailAt(lexer_.Peek());
    lexer_.Next();
    const Token close = lexer_.Next();
    if (!close.IsSymbol(")")) Rewriter::FailAt(close);
  } else {
    frames_.back().Closing = std::string("LIMIT ").append(lexer_.Next().Raw);
  }
  if (lexer_.Peek().Is("PERCENT")) Rewriter::FailAt(lexer_.Peek());
}

/// CONVERT(type, value[, style]) becomes CAST(value AS type).
void TokenCopier::CopyConvert() {
  lexer_.Next();
  const Token name = lexer_.Peek();
  const auto type = TakeType(lexer_);
  if (!type) throw SqlFailure(message::kUnknownType(1, name.Value()), true);
  const Token comma = lexer_.Next();
  if (!comma.IsSymbol(",")) Rewriter::FailAt(comma);
  Put("CAST (");
  Frame frame;
  frame.Closing = std::string("AS ").append(CastType(type->What));
  frame.DropsRest = true;
  frames_.push_back(frame);
}

void TokenCopier::SkipToClosing() {
  while (!lexer_.Peek().IsSymbol(")") && lexer_.Peek().Kind != TokenKind::End) {
    if (lexer_.Peek().IsSymbol("(")) {
      TakeGroup(lexer_);
    } else {
      lexer_.Next();
    }
  }
}

/// A name of one or more parts: [dbo].[Customer].[Name], Sales.dbo.Customer, sys.databases.
void TokenCopier::CopyNames(const Token& first) {
  std::vector<std::string> parts{first.Value()};
  bool hasStar = false;
  while (lexer_.Peek().IsSymbol(".")) {
    lexer_.Next();
    const Token part = lexer_.Peek();
    if (part.IsSymbol(".")) {
      parts.emplace_back();
    } else if (part.IsName()) {
      parts.push_back(lexer_.Next().Value());
    } else if (part.IsSymbol("*")) {
      lexer_.Next();
      hasStar = true;
    } else {
      Rewriter::FailAt(part);
    }
  }
  if (lexer_.Peek().IsSymbol("(")) throw NotKnown("a function or method with a dot");
  std::string prefix;
  if (parts.size() >= 3 && !environment_.IsSchema(parts[0]) && !SameWord(parts[0], "dbo")) {
    prefix = environment_.PrefixOf(parts[0]);
    parts.erase(parts.begin());
    if (parts[0].empty()) parts[0] = "dbo";
  }
  if (parts.size() >= 2 && SameWord(parts[0], "dbo")) {
    parts.erase(parts.begin());
  } else if (parts.size() >= 2 && environment_.IsSchema(parts[0])) {
    parts[1] = DataName(parts[0], parts[1]);
    parts.erase(parts.begin());
  }
  if (parts.size() >= 2 &&
      (SameWord(parts[0], "sys") || SameWord(parts[0], "INFORMATION_SCHEMA"))) {
    PutSystemView(parts[0] + "." + parts[1], prefix);
    return;
  }
  if (parts.size() == 1 && FindSystemView(parts[0]) != nullptr) {
    PutSystemView(parts[0], prefix);
    return;
  }
  std::string joined = prefix;
  for (const std::string& part : parts) {
    if (joined.size() > prefix.size()) joined += '.';
    joined += QuoteName(part);
  }
  if (hasStar) joined += ".*";
  Put(joined);
}

void TokenCopier::PutSystemView(std::string_view name, std::string_view prefix) {
  const SystemView* view = FindSystemView(name);
  if (view == nullptr || (!prefix.empty() && !view->IsServerWide)) {
    throw NotKnown(std::string(name));
  }
  environment_.NeedSystemViews();
  Put("temp." + QuoteName(view->Name));
}

}  // namespace talu::standin
