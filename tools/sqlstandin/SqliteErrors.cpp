// SQLite's errors as the real server would report them.
#include "SqliteDatabase.h"
#include "TableDefinition.h"
#include "Text.h"
#include "runtime/TextFunctions.h"
#include "sql/Lexer.h"

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
      return message::kNullNotAllowed(column, database + ".dbo." + table, verb);
    case SQLITE_CONSTRAINT_PRIMARYKEY:
    case SQLITE_CONSTRAINT_ROWID:
      // SQLite does not name the constraint.
      return message::kDuplicateKey("PRIMARY KEY", "PK_" + table, "dbo." + table);
    case SQLITE_CONSTRAINT_UNIQUE:
      return message::kDuplicateKey("UNIQUE KEY", "UQ_" + table, "dbo." + table);
    case SQLITE_CONSTRAINT_FOREIGNKEY:
      return message::kConflict(verb, verb == "DELETE" ? "REFERENCE" : "FOREIGN KEY", database);
    case SQLITE_CONSTRAINT_CHECK:
      if (what == kLengthConstraint) return message::kTruncated();
      if (what.starts_with(kTypeConstraint)) {
        return message::kConversionError("nvarchar", what.substr(kTypeConstraint.size()));
      }
      return message::kConflict(verb, "CHECK", database);
    default:
      return message::kOwn(text);
  }
}

SqlMessage OfStatement(std::string_view text, std::string_view verb) {
  std::string name;
  if (!(name = Between(text, "near \"", "\": syntax error")).empty() ||
      !(name = Between(text, "unrecognized token: \"", "\"")).empty()) {
    FailNotKnown(sql::Lexer(name).Next());
  }
  if (!(name = After(text, "no such function: ")).empty()) throw NotKnown(UCase(name) + "()");
  if (text == "incomplete input") return message::kSyntaxNear(verb);
  if (!(name = After(text, "no such table: ")).empty() ||
      !(name = After(text, "no such view: ")).empty()) {
    if (verb == "DROP") {
      const bool isView = text.find("view") != std::string_view::npos;
      return message::kCannotDrop(isView ? "view" : "table", WithoutMain(name));
    }
    if (name.starts_with("sys.")) throw NotKnown(name);
    return message::kInvalidObject(WithoutMain(name));
  }
  if (!(name = After(text, "no such index: ")).empty()) {
    return verb == "ALTER" ? message::kNotAConstraint(name.substr(name.find('.') + 1))
                           : message::kCannotDrop("index", name);
  }
  if (!(name = After(text, "no such column: ")).empty() ||
      !(name = After(text, "has no column named ")).empty()) {
    std::erase(name, '"');  // SQLite quotes some names and not others
    return message::kInvalidColumn(name.substr(name.rfind('.') + 1));
  }
  if (!(name = After(text, "ambiguous column name: ")).empty()) {
    return message::kAmbiguousColumn(name);
  }
  if (!(name = After(text, "duplicate column name: ")).empty()) {
    return message::kDuplicateColumn(name);
  }
  for (const char* kind : {"table ", "view ", "index ", "there is already a table named "}) {
    if (text.starts_with(kind) && text.ends_with(" already exists")) {
      name = Between(text, kind, " already exists");
      std::erase(name, '"');
      return message::kObjectExists(name);
    }
  }
  if (text.starts_with("there is already a")) return message::kObjectExists(After(text, "named "));
  if (text.starts_with("table ") && text.ends_with("values were supplied")) {
    return message::kColumnCount();
  }
  const std::size_t values = text.find(" values for ");
  if (values != std::string_view::npos) {
    const auto count = [](std::string_view digits) { return std::stoul(std::string(digits)); };
    return count(text.substr(0, values)) < count(text.substr(values + 12))
               ? message::kMoreColumnsThanValues()
               : message::kFewerColumnsThanValues();
  }
  if (text.find("Expression tree is too large") != std::string_view::npos ||
      text.find("parser stack overflow") != std::string_view::npos) {
    return message::kTooDeep();
  }
  throw NotKnown("");
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
      throw SqlFailure(message::kLockTimeout());
    case SQLITE_NOMEM:
    case SQLITE_TOOBIG:
      throw SqlFailure(message::kOutOfMemory(), true);
    case SQLITE_CANTOPEN:
    case SQLITE_NOTADB:
    case SQLITE_CORRUPT:
      throw SqlFailure(message::kDatabaseInaccessible(name_), true);
    case SQLITE_MISMATCH:
      throw SqlFailure(message::kConversionError("nvarchar", "int"));
    case SQLITE_ERROR:
      throw SqlFailure(OfStatement(text, verb), verb != "DROP");
    default:
      throw SqlFailure(message::kOwn(text));
  }
}

}  // namespace talu::standin
