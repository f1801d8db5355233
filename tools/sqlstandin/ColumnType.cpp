#include "ColumnType.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "Text.h"

namespace talu::standin {
namespace {

using Kind = ColumnType::Kind;

struct KnownType {
  std::string_view Name;
  Kind What;
  /// The name in SQLite. Dates and similar types contain TEXT: they are stored as written.
  std::string_view Declared;
  bool HasLength;
  std::string_view Range = {};
};
constexpr std::string_view kIntRange = "-2147483648 AND 2147483647";

constexpr std::array<KnownType, 40> kKnownTypes = {{
    {"int", Kind::Integer, "INT", false, kIntRange},
    {"integer", Kind::Integer, "INT", false, kIntRange},
    {"bigint", Kind::Integer, "BIGINT", false},
    {"smallint", Kind::Integer, "SMALLINT", false, "-32768 AND 32767"},
    {"tinyint", Kind::Integer, "TINYINT", false, "0 AND 255"},
    {"bit", Kind::Integer, "BIT INT", false, "0 AND 1"},
    {"float", Kind::Real, "FLOAT", false},
    {"real", Kind::Real, "REAL", false},
    {"decimal", Kind::Numeric, "DECIMAL", false},
    {"dec", Kind::Numeric, "DECIMAL", false},
    {"numeric", Kind::Numeric, "NUMERIC", false},
    {"money", Kind::Numeric, "MONEY", false},
    {"smallmoney", Kind::Numeric, "SMALLMONEY", false},
    {"nvarchar", Kind::Text, "NVARCHAR", true},
    {"varchar", Kind::Text, "VARCHAR", true},
    {"nchar", Kind::Text, "NCHAR", true},
    {"char", Kind::Text, "CHAR", true},
    {"character", Kind::Text, "CHAR", true},
    {"sysname", Kind::Text, "NVARCHAR", false},
    {"ntext", Kind::Text, "TEXT", false},
    {"text", Kind::Text, "TEXT", false},
    {"xml", Kind::Text, "XML TEXT", false},
    {"uniqueidentifier", Kind::Text, "UNIQUEIDENTIFIER TEXT", false},
    {"datetime", Kind::Text, "DATETIME TEXT", false},
    {"datetime2", Kind::Text, "DATETIME TEXT", false},
    {"smalldatetime", Kind::Text, "DATETIME TEXT", false},
    {"datetimeoffset", Kind::Text, "DATETIME TEXT", false},
    {"date", Kind::Text, "DATE TEXT", false},
    {"time", Kind::Text, "TIME TEXT", false},
    {"varbinary", Kind::Bytes, "VARBINARY BLOB", true},
    {"binary", Kind::Bytes, "BINARY BLOB", true},
    {"image", Kind::Bytes, "IMAGE BLOB", false},
    {"timestamp", Kind::Bytes, "IMAGE BLOB", false},
    {"rowversion", Kind::Bytes, "IMAGE BLOB", false},
    {"double", Kind::Real, "FLOAT", false},
    {"sql_variant", Kind::Text, "TEXT", false},
    {"geography", Kind::Text, "TEXT", false},
    {"geometry", Kind::Text, "TEXT", false},
    {"hierarchyid", Kind::Text, "TEXT", false},
    {"json", Kind::Text, "TEXT", false},
}};

constexpr std::size_t kLongestNVarChar = 4000;

std::size_t ToSize(std::string_view digits) {
  std::size_t number = 0;
  std::from_chars(digits.data(), digits.data() + digits.size(), number);
  return number;
}

}  // namespace

std::optional<ColumnType> TakeType(Lexer& lexer) {
  std::string name = lexer.Next().Value();
  if (lexer.Peek().IsSymbol(".")) {
    lexer.Next();
    name = lexer.Next().Value();
  }
  const auto* known = std::find_if(kKnownTypes.begin(), kKnownTypes.end(),
                                   [&name](const auto& type) { return SameWord(type.Name, name); });
  if (known == kKnownTypes.end()) return std::nullopt;
  if (known->Name == "double") TakeIf(lexer, "PRECISION");
  ColumnType type{known->What, std::string(known->Name), std::string(known->Declared),
                  std::string(known->Range), 0};
  bool isMax = false;
  if (lexer.Peek().IsSymbol("(")) {
    lexer.Next();
    const Token size = lexer.Next();
    isMax = size.Is("MAX");
    if (known->HasLength && !isMax) type.Length = ToSize(size.Raw);
    while (!lexer.Peek().IsSymbol(")") && lexer.Peek().Kind != TokenKind::End) lexer.Next();
    lexer.Next();
  } else if (known->HasLength) {
    type.Length = 1;  // an omitted length is 1
  }
  if (known->Name == "sysname") type.Length = 128;
  if (type.Length > 0) type.Declared.append("(").append(std::to_string(type.Length)).append(")");
  return type;
}

std::string_view CastType(ColumnType::Kind kind) {
  switch (kind) {
    case Kind::Integer:
      return "INTEGER";
    case Kind::Real:
      return "REAL";
    case Kind::Numeric:
      return "NUMERIC";
    case Kind::Text:
      return "TEXT";
    case Kind::Bytes:
      return "BLOB";
  }
  return "TEXT";
}

std::optional<ResultColumn> ResultTypeOf(std::string_view declared) {
  const std::size_t parenthesis = declared.find('(');
  const std::string_view name = declared.substr(0, parenthesis);
  // The identity column is SQLite's own row number, whose type has exactly this name.
  if (name == "INTEGER" || name == "BIGINT") return ResultColumn{"", ValueType::BigInt, 0};
  const auto* known = std::find_if(kKnownTypes.begin(), kKnownTypes.end(),
                                   [&name](const auto& type) { return type.Declared == name; });
  if (known == kKnownTypes.end()) return std::nullopt;
  switch (known->What) {
    case Kind::Integer:
      return ResultColumn{"", ValueType::Int, 0};
    case Kind::Real:
    case Kind::Numeric:
      return ResultColumn{"", ValueType::Float, 0};
    case Kind::Bytes:
      return ResultColumn{"", ValueType::Bytes, 0};
    case Kind::Text:
      break;
  }
  std::size_t length = 0;
  if (parenthesis != std::string_view::npos) length = ToSize(declared.substr(parenthesis + 1));
  if (length > kLongestNVarChar) length = 0;
  return ResultColumn{"", ValueType::Text, length};
}

}  // namespace talu::standin
