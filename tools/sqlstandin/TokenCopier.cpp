#include "TokenCopier.h"

#include <string_view>

#include "ColumnType.h"
#include "Messages.h"
#include "sql/Names.h"

namespace talu::standin {
namespace {

/// System views without a schema; and those that are the same in every database: of the others only
/// the current database's can be read.
constexpr std::string_view kOldViews = " sysdatabases syslogins sysusers sysobjects syscolumns ";
constexpr std::string_view kServerViews =
    " sys.databases sys.sql_logins sys.server_principals sysdatabases syslogins ";

/// SQLite's keywords that are ordinary names in T-SQL.
constexpr std::string_view kNamesHere =
    "LIMIT AUTOINCREMENT DEFERRABLE NOTNULL NOTHING RETURNING USING INDEXED";

constexpr std::string_view kSymbols = ", . = < > <= >= <> != - * / % & | ~";

bool Has(std::string_view words, std::string_view name) {
  return words.find(" " + FoldName(name) + " ") != std::string_view::npos;
}

bool IsSystemSchema(std::string_view name) {
  return SameWord(name, "sys") || SameWord(name, "INFORMATION_SCHEMA");
}

}  // namespace

/// Puts a blank between what would be another token without.
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
    const Token token = reader_.Take();
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
  Frame& frame = frames_.back();
  if (token.IsSymbol("(")) {
    Put("(");
    const bool isCast = last_.Is("CAST");
    frames_.emplace_back().IsCast = isCast;
  } else if (token.IsSymbol(")")) {
    if (frames_.size() == 1) FailNotKnown(token);
    if (!frame.Closing.empty()) Put(frame.Closing);
    frames_.pop_back();
    Put(")");
  } else if (token.IsSymbol(",") && frame.DropsRest) {
    while (!reader_.IsAtEnd() && !reader_.Next().IsSymbol(")")) {
      if (reader_.Next().IsSymbol("(")) {
        reader_.TakeGroup();
      } else {
        reader_.Take();
      }
    }
  } else if (token.IsSymbol("$") && reader_.Next().Kind == TokenKind::Number) {
    // money: a number as any other
  } else if (token.IsSymbol("+")) {
    frame.JoinsTexts |= last_.Kind == TokenKind::String || reader_.Next().Kind == TokenKind::String;
    Put(frame.JoinsTexts ? "||" : "+");
  } else {
    if (kSymbols.find(token.Raw) == std::string_view::npos) FailNotKnown(token);
    static constexpr std::string_view kEnds = ",=<>!";
    if (kEnds.find(token.Raw.front()) != std::string_view::npos) frame.JoinsTexts = false;
    Put(token.Raw);
  }
}

void TokenCopier::CopyWord(const Token& token) {
  const Token& next = reader_.Next();
  const bool isCall = next.IsSymbol("(");
  if (token.Raw.front() == '#') FailNotKnown(token);  // temporary tables
  if (next.IsSymbol(".") || (token.Raw.size() > 7 && Has(kOldViews, token.Raw))) {
    CopyNames(token);
  } else if (token.Is("TOP") && IsAmong(last_, "SELECT DISTINCT ALL") &&
             (isCall || next.Kind == TokenKind::Number)) {
    CopyTop();
  } else if (isCall && token.Is("CONVERT")) {
    CopyConvert();
  } else if (isCall && token.Is("WITH") && last_.Kind != TokenKind::End) {
    reader_.TakeGroup();  // a lock hint
  } else if (isCall && token.Is("ISNULL")) {
    Put("ifnull");
  } else if (isCall && token.Is("NCHAR")) {
    frames_.back().JoinsTexts = true;
    Put("char");
  } else if (isCall && token.Is("SCOPE_IDENTITY")) {
    Put("last_insert_rowid");
  } else if (token.Is("CURRENT_TIMESTAMP")) {
    Put("getdate()");
  } else if (token.Is("AS") && frames_.back().IsCast) {
    Put("AS");
    Put(TakeCastType());
  } else {
    if (IsAmong(token, "FROM WHERE AND OR WHEN THEN ELSE AS ORDER")) {
      frames_.back().JoinsTexts = false;
    }
    const bool needsQuotes =
        IsAmong(token, kNamesHere) || token.Raw.find_first_of("@$#") != std::string_view::npos;
    Put(needsQuotes ? QuoteName(token.Raw) : std::string(token.Raw));
  }
}

/// TOP 5, TOP (5): SQLite's LIMIT, at the end of the query.
void TokenCopier::CopyTop() {
  const bool isGroup = reader_.TakeSymbol("(");
  const Token number = reader_.Take();
  if (number.Kind != TokenKind::Number) FailNotKnown(number);
  frames_.back().Closing = std::string("LIMIT ").append(number.Raw);
  if (isGroup) reader_.ExpectSymbol(")");
  if (reader_.Next().Is("PERCENT")) FailNotKnown(reader_.Next());
}

/// CONVERT(type, value[, style]) becomes CAST(value AS type).
void TokenCopier::CopyConvert() {
  reader_.Take();
  Frame frame;
  frame.Closing = std::string("AS ").append(TakeCastType());
  frame.DropsRest = true;
  reader_.ExpectSymbol(",");
  Put("CAST (");
  frames_.push_back(frame);
}

std::string_view TokenCopier::TakeCastType() {
  std::string name;
  const auto type = TakeType(reader_, name);
  if (!type) throw SqlFailure(message::kUnknownType(1, name), true);
  return CastType(type->What);
}

/// A name of one or more parts: [dbo].[Customer].[Name], Sales.dbo.Customer, sys.databases.
void TokenCopier::CopyNames(const Token& first) {
  std::vector<std::string> parts{first.Value()};
  bool hasStar = false;
  while (!hasStar && reader_.TakeSymbol(".")) {
    hasStar = reader_.TakeSymbol("*");
    if (hasStar) break;
    if (!reader_.Next().IsSymbol(".") && !reader_.Next().IsName()) FailNotKnown(reader_.Next());
    parts.push_back(reader_.Next().IsSymbol(".") ? std::string() : reader_.Take().Value());
  }
  if (reader_.Next().IsSymbol("(") && parts.size() > 1) {
    throw NotKnown("a function or method with a dot");
  }
  std::string prefix;
  const auto isDbo = [&parts] { return SameWord(parts[0], "dbo"); };
  if (parts.size() >= 3 && !isDbo() && !IsSystemSchema(parts[0]) &&
      !environment_.IsSchema(parts[0])) {
    prefix = environment_.PrefixOf(parts[0]);
    parts.erase(parts.begin());
    if (parts[0].empty()) parts[0] = "dbo";
  }
  const bool isSystem = parts.size() >= 2 && IsSystemSchema(parts[0]);
  if (parts.size() >= 2 && (isDbo() || isSystem || environment_.IsSchema(parts[0]))) {
    parts[1] = DataName(parts[0], parts[1]);
    parts.erase(parts.begin());
  }
  if (isSystem || Has(kOldViews, parts[0])) {
    environment_.ReadsSystemView();
    if (!prefix.empty() && !Has(kServerViews, parts[0])) throw NotKnown(parts[0]);
    prefix.clear();
  }
  std::string joined = prefix;
  for (const std::string& part : parts) {
    joined += (joined.size() > prefix.size() ? "." : "") + QuoteName(part);
  }
  Put(joined + (hasStar ? ".*" : ""));
}

}  // namespace talu::standin
