// SQLite's errors as the real server would report them.
#include "SqliteDatabase.h"
#include "TableDefinition.h"
#include "Text.h"

namespace talu::standin {
namespace {

/// The text after `mark` in `text`, or nothing.
std::string After(std::string_view text, std::string_view mark) {
  const std::size_t at = text.find(mark);
  return at == std::string_view::npos ? std::string() : std::string(text.substr(at + mark.size()));
}

/// The text between two marks, or nothing.
std::string Between(std::string_view text, std::string_view left, std::string_view right) {
  const std::string rest = After(text, left);
  return rest.substr(0, rest.rfind(right));
}

std::string WithoutMain(const std::string& name) {
  return name.starts_with("main.") ? name.substr(5) : name;
}

SqlMessage OfConstraint(int code, std::string_view text, std::string_view verb,
                        const std::string& database) {
  const std::string what = After(text, "constraint failed: ");
  const std::string table = what.substr(0, what.find('.'));
  const std::string column = After(what, ".").substr(0, After(what, ".").find(','));
  switch (code) {
    case SQLITE_CONSTRAINT_NOTNULL:
      return message::NullNotAllowed(column, database + ".dbo." + table, verb);
    case SQLITE_CONSTRAINT_PRIMARYKEY:
    case SQLITE_CONSTRAINT_ROWID:
      // SQLite does not name the constraint.
      return message::DuplicateKey("PRIMARY KEY", "PK_" + table, "dbo." + table);
    case SQLITE_CONSTRAINT_UNIQUE:
      return message::DuplicateKey("UNIQUE KEY", "UQ_" + table, "dbo." + table);
    case SQLITE_CONSTRAINT_FOREIGNKEY:
      return message::Conflict(verb, verb == "DELETE" ? "REFERENCE" : "FOREIGN KEY", database);
    case SQLITE_CONSTRAINT_CHECK:
      if (what == kLengthConstraint) return message::Truncated();
      if (what.starts_with(kTypeConstraint)) {
        return message::ConversionError("nvarchar", what.substr(kTypeConstraint.size()));
      }
      return message::Conflict(verb, "CHECK", database);
    default:
      return message::Own(text);
  }
}

SqlMessage OfStatement(std::string_view text, std::string_view verb) {
  std::string name;
  if (!(name = Between(text, "near \"", "\": syntax error")).empty() ||
      !(name = Between(text, "unrecognized token: \"", "\"")).empty()) {
    return message::SyntaxNear(name);
  }
  if (text == "incomplete input") return message::SyntaxNear(verb);
  if (!(name = After(text, "no such table: ")).empty() ||
      !(name = After(text, "no such view: ")).empty()) {
    if (verb == "DROP") {
      const bool isView = text.find("view") != std::string_view::npos;
      return message::CannotDrop(isView ? "view" : "table", WithoutMain(name));
    }
    return message::InvalidObject(WithoutMain(name));
  }
  if (!(name = After(text, "no such index: ")).empty()) return message::CannotDrop("index", name);
  if (!(name = After(text, "no such column: ")).empty() ||
      !(name = After(text, "has no column named ")).empty()) {
    std::erase(name, '"');  // SQLite quotes some names and not others
    return message::InvalidColumn(name.substr(name.rfind('.') + 1));
  }
  if (!(name = After(text, "ambiguous column name: ")).empty()) {
    return message::AmbiguousColumn(name);
  }
  if (!(name = After(text, "no such function: ")).empty() ||
      !(name = Between(text, "unknown function: ", "()")).empty()) {
    return message::UnknownFunction(name);
  }
  if (!(name = After(text, "duplicate column name: ")).empty()) {
    return message::DuplicateColumn(name);
  }
  for (const char* kind : {"table ", "view ", "index ", "there is already a table named "}) {
    if (text.starts_with(kind) && text.ends_with(" already exists")) {
      name = Between(text, kind, " already exists");
      std::erase(name, '"');
      return message::ObjectExists(name);
    }
  }
  if (text.starts_with("there is already a")) return message::ObjectExists(After(text, "named "));
  if (text.starts_with("table ") && text.ends_with("values were supplied")) {
    return message::ColumnCount();
  }
  const std::size_t values = text.find(" values for ");
  if (values != std::string_view::npos) {
    const auto count = [](std::string_view digits) { return std::stoul(std::string(digits)); };
    return count(text.substr(0, values)) < count(text.substr(values + 12))
               ? message::MoreColumnsThanValues()
               : message::FewerColumnsThanValues();
  }
  if (text.find("Expression tree is too large") != std::string_view::npos ||
      text.find("parser stack overflow") != std::string_view::npos) {
    return message::TooDeep();
  }
  return message::Own(text);
}

}  // namespace

void SqliteDatabase::Fail(int code, std::string_view verb) const {
  const std::string text = sqlite3_errmsg(handle_.get());
  switch (code & 0xFF) {
    case SQLITE_INTERRUPT:
      throw Cancelled();
    case SQLITE_CONSTRAINT:
      throw SqlFailure(OfConstraint(code, text, verb, name_));
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      if (isCancelled_()) throw Cancelled();
      throw SqlFailure(message::LockTimeout());
    case SQLITE_NOMEM:
    case SQLITE_TOOBIG:
      throw SqlFailure(message::OutOfMemory(), true);
    case SQLITE_CANTOPEN:
    case SQLITE_NOTADB:
    case SQLITE_CORRUPT:
      throw SqlFailure(message::DatabaseInaccessible(name_), true);
    case SQLITE_ERROR:
      throw SqlFailure(OfStatement(text, verb), verb != "DROP");
    default:
      throw SqlFailure(message::Own(text));
  }
}

}  // namespace talu::standin
