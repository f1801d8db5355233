#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "Reader.h"
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
/// an unknown type, but reads its name, which `name` receives as DataName gives it.
std::optional<ColumnType> TakeType(Reader& reader, std::string& name);

/// The type that CAST gives a value in SQLite.
std::string_view CastType(ColumnType::Kind kind);

/// The result column reported to the client for a declared type; nothing for another text.
std::optional<ResultColumn> ResultTypeOf(std::string_view declared);

/// The number that a text begins with; 0 for none.
std::size_t ToSize(std::string_view digits);

}  // namespace talu::standin
