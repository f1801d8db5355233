// How the simulated server handles the names that it keeps.

#include <algorithm>
#include <array>
#include <utility>

#include "platform/simulated/SimulatedServer.h"
#include "runtime/TextFunctions.h"
#include "sql/BatchShape.h"
#include "sql/Lexer.h"
#include "sql/Names.h"

namespace talu {
namespace {

using sql::Token;

constexpr std::array<std::string_view, 4> kSystemDatabases = {"MASTER", "MODEL", "MSDB", "TEMPDB"};

/// Whether the statement can create something, name a database or a login, or call a procedure that
/// does; most rows of data do not, and a large pack has millions.
bool MayMatter(std::string_view statement) {
  constexpr std::array<std::string_view, 6> kWords = {"ALTER", "CREATE", "DATABASE",
                                                      "LOGIN", "USE",    "USER"};
  for (std::size_t at = 0; at < statement.size(); ++at) {
    const char lower = static_cast<char>(statement[at] | 0x20);
    if (lower == 'x' && at > 0 && EqualsUpper(statement.substr(at - 1, 4), "EXEC")) return true;
    if (statement[at] == '$' && statement.substr(at, 2) == "$(") return true;
    if (lower != 'a' && lower != 'c' && lower != 'd' && lower != 'l' && lower != 'u') continue;
    if (at > 0 && sql::IsWordPart(statement[at - 1])) continue;
    for (const std::string_view word : kWords) {
      const std::size_t end = at + word.size();
      if (end < statement.size() && sql::IsWordPart(statement[end])) continue;
      if (EqualsUpper(statement.substr(at, word.size()), word)) return true;
    }
  }
  return false;
}

/// Server messages 1801, 15025, 3701, 15151, 5011, 911 and 15007.
RuntimeError Exists(const std::string& name, bool login) {
  return StatementError(login ? "The server principal '" + name + "' already exists."
                              : "Database '" + name +
                                    "' already exists. Choose a different database name.");
}
RuntimeError CannotDrop(const std::string& name, bool login) {
  return StatementError("Cannot drop the " + std::string(login ? "login" : "database") + " '" +
                        name + "', because it does not exist or you do not have permission.");
}
RuntimeError CannotAlter(const std::string& name, bool login) {
  return StatementError(
      login ? "Cannot alter the login '" + name +
                  "', because it does not exist or you do not have permission."
            : "User does not have permission to alter database '" + name +
                  "', the database does not exist, or the database is not in a state that allows "
                  "access checks.");
}
RuntimeError CannotUse(const std::string& name) {
  return StatementError("Database '" + name +
                        "' does not exist. Make sure that the name is entered correctly.");
}

RuntimeError NoLogin(const std::string& name) {
  return StatementError("'" + name + "' is not a valid login or you do not have permission.");
}

/// Server message 111.
RuntimeError NotFirst(std::string_view kind) {
  const std::string word = UCase(kind);
  const bool procedure = word == "PROC" || word == "PROCEDURE";
  return StatementError((procedure ? "'CREATE/ALTER PROCEDURE" : "'CREATE " + word) +
                        "' must be the first statement in a query batch.");
}

/// The login of a user that is created; `behind` reads what is behind the user's name. Empty for a
/// user that needs none.
std::string LoginOf(const Token& user, sql::Lexer behind) {
  Token word = behind.Next();
  if (word.IsOneOf({"WITHOUT", "FOR", "FROM"})) {
    const bool of = !word.Is("WITHOUT") && behind.Next().Is("LOGIN");
    return of ? behind.Next().Value() : "";
  }
  while (word.IsOneOf({"WITH", "DEFAULT_SCHEMA"}) || word.IsSymbol("=") || word.IsSymbol(",")) {
    const bool isSchema = word.IsSymbol("=");
    word = behind.Next();
    if (isSchema) word = behind.Next();
  }
  return word.Is("PASSWORD") ? "" : user.Value();
}

/// Not a name: the current database, and statements about its parts.
bool IsNoName(const Token& token, bool login) {
  return !login && token.IsOneOf({"CURRENT", "SCOPED", "AUDIT", "ENCRYPTION", "HINT"});
}

/// Server messages 102, 156 and 105.
RuntimeError Misplaced(const Token& token, const Token& before) {
  const Token& shown = token.Kind == sql::TokenKind::End ? before : token;
  if (!shown.IsClosed) {
    return StatementError("Unclosed quotation mark after the character string '" +
                          std::string(shown.Inside()) + "'.");
  }
  const bool keyword = shown.Kind == sql::TokenKind::Word && sql::IsReserved(shown.Raw);
  return StatementError(std::string("Incorrect syntax near ") + (keyword ? "the keyword '" : "'") +
                        shown.Value() + "'.");
}

/// Refuses a statement whose name is none, or is followed by what cannot stand there. `after` is
/// the token behind the name.
void RequireSyntax(const Token& verb, const Token& kind, const Token& name, const Token& after) {
  if (!verb.IsOneOf({"CREATE", "ALTER", "DROP", "USE", "BACKUP"})) return;
  if (name.Kind == sql::TokenKind::Variable || name.Is("CURRENT")) return;
  const bool reserved = name.Kind == sql::TokenKind::Word && sql::IsReserved(name.Raw);
  if (!name.IsName() || !name.IsClosed || reserved) throw Misplaced(name, kind);
  if (!after.IsClosed) throw Misplaced(after, name);
  const bool ends = after.Kind == sql::TokenKind::End || after.IsSymbol(";");
  const bool begins = after.Kind == sql::TokenKind::Word && sql::BeginsStatement(after.Raw);
  bool fits = false;
  if (verb.Is("BACKUP")) {
    fits = after.IsOneOf({"TO", "FILE", "FILEGROUP", "READ_WRITE_FILEGROUPS"});
  } else if (verb.Is("ALTER") && kind.Is("DATABASE")) {
    fits = after.IsOneOf({"SET", "MODIFY", "ADD", "REMOVE", "COLLATE"});
  } else if (verb.IsOneOf({"DROP", "USE"})) {
    fits = ends || begins || (after.IsSymbol(",") && verb.Is("DROP"));
  } else {
    fits = ends || after.IsSymbol("(") || after.Kind == sql::TokenKind::Word;
  }
  if (!fits) throw Misplaced(after, name);
}

}  // namespace

bool SimulatedServer::Has(const std::string& name, bool login) const {
  if (login) return Logins.contains(name) || name == "SA";
  return Databases.contains(name) ||
         std::ranges::find(kSystemDatabases, name) != kSystemDatabases.end();
}

void SimulatedServer::Take(std::string_view statement) {
  if (!MayMatter(statement)) return;
  Compile(statement);
  FollowNames(statement);
}

void SimulatedServer::ApplyNames(std::string_view statement) {
  if (MayMatter(statement)) FollowNames(statement);
}

// Refuses a batch of which nothing runs. Names of databases are looked for before it does, so what
// it creates is not there yet.
void SimulatedServer::Compile(std::string_view batch) const {
  sql::BatchShape shape;
  std::set<std::string> created;
  std::string used;
  sql::Lexer lexer(batch);
  Token before;
  Token previous;
  for (Token token = lexer.Next(); token.Kind != sql::TokenKind::End; token = lexer.Next()) {
    // A variable of the command-line tool, which has not replaced it.
    if (batch.substr(token.At, 2) == "$(") throw StatementError("Incorrect syntax near '$'.");
    shape.Take(token, 1);
    if (before.Is("CREATE") && previous.Is("DATABASE")) created.insert(UCase(token.Value()));
    if (previous.Is("USE") && created.contains(UCase(token.Value()))) used = token.Value();
    before = std::exchange(previous, token);
  }
  if (!shape.NotFirst().empty()) throw NotFirst(shape.NotFirst().front().Word);
  if (!used.empty() && !Has(UCase(used), false)) throw CannotUse(used);
}

// Applies changes of names; the first refusal ends the statement. A statement that asks first (IF)
// is assumed to have asked the right thing: nothing fails.
void SimulatedServer::FollowNames(std::string_view statement) {
  bool asked = false;
  sql::Lexer lexer(statement);
  Token before;
  Token verb = lexer.Next();
  Token kind = lexer.Next();
  Token name = lexer.Next();
  const auto advance = [&] {
    before = std::exchange(verb, std::exchange(kind, std::exchange(name, lexer.Next())));
  };
  for (; verb.Kind != sql::TokenKind::End; advance()) {
    if (verb.Is("IF")) asked = true;
    // A body is not executed now.
    if (kind.IsOneOf({"PROC", "PROCEDURE", "FUNCTION", "TRIGGER"}) &&
        verb.IsOneOf({"CREATE", "ALTER"})) {
      inProcedures_.Add(UCase(statement));
      return;
    }
    if (verb.IsOneOf({"EXEC", "EXECUTE"})) {
      sql::Lexer arguments(statement, kind.At, statement.size());
      ApplyCall(arguments, kind, statement);
    }
    if (before.IsOneOf({"GRANT", "DENY", "REVOKE"}) || before.IsSymbol(",")) continue;
    if (kind.IsOneOf({"DATABASE", "LOGIN"})) {
      const Token statementVerb = verb;
      const Token statementKind = kind;
      const bool login = kind.Is("LOGIN");
      const bool ifExists = name.Is("IF");  // IF EXISTS name
      if (ifExists) {
        advance();
        advance();
      }
      if (IsNoName(name, login)) continue;
      sql::Lexer ahead = lexer;
      RequireSyntax(statementVerb, statementKind, name, ahead.Next());
      ApplyName(statementVerb, name, login, asked || ifExists);
    } else if (verb.Is("CREATE") && kind.Is("USER")) {
      if (!asked) RequireLogin(LoginOf(name, lexer));
    } else if (verb.Is("USE")) {
      if (IsNoName(kind, false)) continue;
      RequireSyntax(verb, verb, kind, name);
      ApplyName(verb, kind, false, asked);
    }
  }
}

// What a text does that is run, or a procedure that has such a text, is not seen.
void SimulatedServer::ApplyCall(const sql::Lexer& arguments, const Token& procedure,
                                std::string_view statement) {
  const std::string upper = UCase(statement);
  if (procedure.IsSymbol("(") || Contains(upper, "SP_EXECUTESQL")) unseen_.Add(upper);
  unseen_.Databases = unseen_.Databases || inProcedures_.Databases;
  unseen_.Logins = unseen_.Logins || inProcedures_.Logins;
  sql::Lexer lexer = arguments;
  Token called = lexer.Next();
  Token next = lexer.Next();
  while (next.IsSymbol(".")) {  // master.dbo.sp_addlogin, master..sp_addlogin
    while (next.IsSymbol(".")) next = lexer.Next();
    called = std::exchange(next, lexer.Next());
  }
  const std::string name = UCase(called.Value());
  const bool login = name == "SP_ADDLOGIN" || name == "SP_GRANTLOGIN";
  const bool user = name == "SP_ADDUSER" || name == "SP_GRANTDBACCESS";
  if (!login && !user && name != "SP_ATTACH_DB" && name != "SP_ATTACH_SINGLE_FILE_DB") return;
  if (next.Kind == sql::TokenKind::Variable) {  // @loginame = 'x'
    lexer.Next();
    next = lexer.Next();
  }
  if (next.Kind != sql::TokenKind::String && !next.IsName()) {
    (login ? unseen_.Logins : unseen_.Databases) = true;
    return;
  }
  const std::string made = next.Value();
  if (user) {
    RequireLogin(made);
    return;
  }
  if (Has(UCase(made), login)) throw Exists(made, login);
  (login ? Logins : Databases).insert(UCase(made));
}

// An account of Windows needs no login of its own.
void SimulatedServer::RequireLogin(const std::string& name) {
  if (name.empty() || Contains(name, "\\") || Has(UCase(name), true)) return;
  if (!unseen_.Logins) throw NoLogin(name);
  doubt_ = "whether there is a login " + name;
}

void SimulatedServer::ApplyName(const Token& verb, const Token& named, bool login, bool asked) {
  const std::string name = named.Value();
  const std::string upper = UCase(name);
  bool there = Has(upper, login);
  const bool required = verb.IsOneOf({"DROP", "ALTER", "USE"}) && !asked;
  if (!there && required && (login ? unseen_.Logins : unseen_.Databases)) {
    doubt_ = std::string("whether there is a ") + (login ? "login " : "database ") + name;
    there = true;
  }
  auto& names = login ? Logins : Databases;
  if (verb.Is("CREATE")) {
    if (there && !asked) throw Exists(name, login);
    names.insert(upper);
  } else if (verb.Is("RESTORE") && !login) {
    names.insert(upper);
  } else if (verb.Is("DROP")) {
    if (!there && !asked) throw CannotDrop(name, login);
    names.erase(upper);
  } else if (verb.Is("ALTER")) {
    if (!there && !asked) throw CannotAlter(name, login);
  } else if (verb.Is("USE")) {
    if (!there && !asked) throw CannotUse(name);
  }
}

}  // namespace talu
