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

bool IsSystemView(const std::string& name) {
  const std::string folded = FoldName(name);
  return folded.starts_with("sys.") || folded.starts_with("information_schema.");
}

/// A name without its quotes, and without what stands before its last dot.
std::string LastPart(std::string name) {
  std::erase(name, '"');  // SQLite quotes some names and not others
  return name.substr(name.rfind('.') + 1);
}

SqlMessage OfStatement(std::string_view text, std::string_view verb) {
  std::string name;
  const auto has = [&](std::string_view mark, std::string_view end = {}) {
    name = end.empty() ? After(text, mark) : Between(text, mark, end);
    return !name.empty();
  };
  if (has("near \"", "\": syntax error") || has("unrecognized token: \"", "\"")) {
    FailNotKnown(sql::Lexer(name).Next());
  }
  if (has("no such function: ")) throw NotKnown(UCase(name) + "()");
  if (text == "incomplete input") return message::kSyntaxNear(verb);
  const bool isView = has("no such view: ");
  if (isView || has("no such table: ")) {
    if (name.starts_with("main.")) name.erase(0, 5);
    if (verb == "DROP") return message::kCannotDrop(isView ? "view" : "table", name);
    if (IsSystemView(name)) throw NotKnown(name);
    return message::kInvalidObject(name);
  }
  if (has("no such index: ")) {
    return verb == "ALTER" ? message::kNotAConstraint(name.substr(name.find('.') + 1))
                           : message::kCannotDrop("index", name);
  }
  if (has("no such column: ") || has("has no column named ")) {
    return message::kInvalidColumn(LastPart(name));
  }
  if (has("ambiguous column name: ")) return message::kAmbiguousColumn(name);
  if (has("duplicate column name: ")) return message::kDuplicateColumn(name);
  for (const char* kind : {"table ", "view ", "index ", "there is already a table named "}) {
    if (text.starts_with(kind) && text.ends_with(" already exists")) {
      name = Between(text, kind, " already exists");
      std::erase(name, '"');
      return message::kObjectExists(name);
    }
  }
  if (has("there is already a") && has("named ")) return message::kObjectExists(name);
  if (text.ends_with("values were supplied")) return message::kColumnCount();
  if (has(" values for ")) {
    return std::stoul(std::string(text)) < std::stoul(name) ? message::kMoreColumnsThanValues()
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
