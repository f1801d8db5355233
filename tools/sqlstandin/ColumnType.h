#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "Lexer.h"
#include "Reply.h"

namespace talu::standin {

/// A column's type, and how SQLite stores it.
struct ColumnType {
  enum class Kind { Integer, Real, Numeric, Text, Bytes };
  Kind What = Kind::Text;
  /// The name in the error for a value of another type: "int".
  std::string Name;
  /// The type in SQLite's CREATE TABLE: it gives the column its affinity and the result its type.
  std::string Declared;
  /// The smallest and the largest value, "0 AND 255"; empty where SQLite has the same limits.
  std::string Range;
  /// Most characters or bytes; 0 for no limit.
  std::size_t Length = 0;
};

/// Reads a type: nvarchar(50), [decimal](10, 2), sys.sysname, varbinary(max). Returns nothing for
/// an unknown type, but reads the tokens of its name.
std::optional<ColumnType> TakeType(Lexer& lexer);

/// The type that CAST gives a value in SQLite.
std::string_view CastType(ColumnType::Kind kind);

/// The result column reported to the client for a declared type; nothing for another text.
std::optional<ResultColumn> ResultTypeOf(std::string_view declared);

}  // namespace talu::standin
