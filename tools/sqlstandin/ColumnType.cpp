#include "ColumnType.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "Text.h"

namespace talu::standin {
namespace {

using Kind = ColumnType::Kind;

struct KnownType {
  /// In lower case, with blanks between and around them.
  std::string_view Names;
  Kind What;
  /// The name in SQLite. Dates and similar types contain TEXT: they are stored as written.
  std::string_view Declared;
  /// How long it is where that is not said: 0 for as long as you like.
  std::size_t Length = 0;
  std::string_view Range = {};
};

constexpr std::array<KnownType, 24> kKnownTypes = {{
    {" int integer ", Kind::Integer, "INT", 0, "-2147483648 AND 2147483647"},
    {" bigint ", Kind::Integer, "BIGINT"},
    {" smallint ", Kind::Integer, "SMALLINT", 0, "-32768 AND 32767"},
    {" tinyint ", Kind::Integer, "TINYINT", 0, "0 AND 255"},
    {" bit ", Kind::Integer, "BIT INT", 0, "0 AND 1"},
    {" float ", Kind::Real, "FLOAT"},
    {" real ", Kind::Real, "REAL"},
    {" decimal dec ", Kind::Numeric, "DECIMAL"},
    {" numeric ", Kind::Numeric, "NUMERIC"},
    {" money smallmoney ", Kind::Numeric, "MONEY"},
    {" nvarchar ", Kind::Text, "NVARCHAR", 1},
    {" sysname ", Kind::Text, "NVARCHAR", 128},
    {" varchar ", Kind::Text, "VARCHAR", 1},
    {" nchar ", Kind::Text, "NCHAR", 1},
    {" char character ", Kind::Text, "CHAR", 1},
    {" ntext text sql_variant geography geometry hierarchyid json ", Kind::Text, "TEXT"},
    {" xml ", Kind::Text, "XML TEXT"},
    {" uniqueidentifier ", Kind::Text, "UNIQUEIDENTIFIER TEXT"},
    {" datetime datetime2 smalldatetime datetimeoffset ", Kind::Text, "DATETIME TEXT"},
    {" date ", Kind::Text, "DATE TEXT"},
    {" time ", Kind::Text, "TIME TEXT"},
    {" varbinary ", Kind::Bytes, "VARBINARY BLOB", 1},
    {" binary ", Kind::Bytes, "BINARY BLOB", 1},
    {" image timestamp rowversion ", Kind::Bytes, "IMAGE BLOB"},
}};

constexpr std::size_t kLongestNVarChar = 4000;

}  // namespace

std::size_t ToSize(std::string_view digits) {
  std::size_t number = 0;
  std::from_chars(digits.data(), digits.data() + digits.size(), number);
  return number;
}

std::optional<ColumnType> TakeType(Reader& reader, std::string& name) {
  if (reader.TakeIf("DOUBLE")) {
    reader.TakeIf("PRECISION");
    name = "float";
  } else {
    name = reader.TakeObjectName();
  }
  const std::string plain = FoldName(name.substr(name.rfind('.') + 1));
  const auto* known = std::ranges::find_if(kKnownTypes, [&](const KnownType& each) {
    return each.Names.find(" " + plain + " ") != std::string_view::npos;
  });
  if (known == kKnownTypes.end()) return std::nullopt;
  ColumnType type{known->What, plain, std::string(known->Declared), std::string(known->Range),
                  known->Length};
  if (reader.TakeSymbol("(")) {
    const Token size = reader.Take();
    if (type.Length > 0) type.Length = ToSize(size.Raw);  // 0 for MAX
    // (10, 2), and for XML a name.
    while (!reader.IsAtEnd() && !reader.Next().IsSymbol(")")) reader.Take();
    reader.ExpectSymbol(")");
  }
  if (type.Length > 0) type.Declared.append("(").append(std::to_string(type.Length)).append(")");
  return type;
}

std::string_view CastType(ColumnType::Kind kind) {
  static constexpr std::array<std::string_view, 5> kCasts = {"INTEGER", "REAL", "NUMERIC", "TEXT",
                                                             "BLOB"};
  return kCasts.at(static_cast<std::size_t>(kind));
}

std::optional<ResultColumn> ResultTypeOf(std::string_view declared) {
  const std::size_t parenthesis = declared.find('(');
  const std::string_view name = declared.substr(0, parenthesis);
  // The identity column is SQLite's own row number, whose type has exactly this name.
  if (name == "INTEGER" || name == "BIGINT") return ResultColumn{"", ValueType::BigInt, 0};
  const auto* known = std::ranges::find(kKnownTypes, name, &KnownType::Declared);
  if (known == kKnownTypes.end()) return std::nullopt;
  if (known->What == Kind::Integer) return ResultColumn{"", ValueType::Int, 0};
  if (known->What == Kind::Bytes) return ResultColumn{"", ValueType::Bytes, 0};
  if (known->What != Kind::Text) return ResultColumn{"", ValueType::Float, 0};
  std::size_t length = 0;
  if (parenthesis != std::string_view::npos) length = ToSize(declared.substr(parenthesis + 1));
  if (length > kLongestNVarChar) length = 0;
  return ResultColumn{"", ValueType::Text, length};
}

}  // namespace talu::standin
