#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "Lexer.h"
#include "Reply.h"

namespace talu::standin {

/// A column's type, and how SQLite keeps it.
struct ColumnType {
  enum class Kind { Integer, Real, Numeric, Text, Bytes };
  Kind What = Kind::Text;
  /// The name for the error that a value of another type is answered with: "int".
  std::string Name;
  /// The type in SQLite's CREATE TABLE: it gives the right affinity, and the result its type.
  std::string Declared;
  /// The least and the greatest value, "0 AND 255"; empty where SQLite has the same.
  std::string Range;
  /// Most characters or bytes; 0 for no limit.
  std::size_t Length = 0;
};

/// Reads a type: nvarchar(50), [decimal](10, 2), sys.sysname, varbinary(max). Nothing when the
/// server has no such type; the tokens of its name are taken all the same.
std::optional<ColumnType> TakeType(Lexer& lexer);

/// The type that CAST gives a value in SQLite.
std::string_view CastType(ColumnType::Kind kind);

/// What the client is told of a result's column that was declared so; nothing for another text.
std::optional<ResultColumn> ResultTypeOf(std::string_view declared);

}  // namespace talu::standin
