// How the simulated server handles the names that it keeps.

#include <algorithm>
#include <array>
#include <cstdint>
#include <utility>

#include "platform/simulated/ServerMessages.h"
#include "platform/simulated/SimulatedServer.h"
#include "runtime/TextFunctions.h"
#include "sql/BatchShape.h"
#include "sql/Lexer.h"
#include "sql/Names.h"
#include "sql/Words.h"

namespace talu {
namespace {

using sql::Token;
using Reason = Refusal::Reason;

constexpr std::array<std::string_view, 4> kSystemDatabases = {"MASTER", "MODEL", "MSDB", "TEMPDB"};

/// Whether a procedure is called by its name alone, as only the first statement can.
bool BeginsWithCall(std::string_view statement) {
  sql::Lexer lexer(statement);
  const Token first = lexer.Next();
  if (first.Kind == sql::TokenKind::Name) return true;
  return first.Kind == sql::TokenKind::Word && !sql::BeginsStatement(first.Raw) &&
         !first.Is("WITH") && !lexer.Next().IsSymbol(":");
}

/// Words that make, name or give something; EXEC and what may take rows have more to them.
bool IsTelling(std::string_view word) {
  constexpr std::array<std::string_view, 14> kWords = {
      "ALTER", "CREATE", "DATABASE",  "DENY",   "DROP",     "GRANT",   "INTO",
      "LOGIN", "NOEXEC", "PARSEONLY", "REVOKE", "ROLLBACK", "SETUSER", "USE"};
  return std::ranges::any_of(kWords, [&](std::string_view upper) {
    return word.size() == upper.size() && (word[0] | 0x20) == (upper[0] | 0x20) &&
           EqualsUpper(word, upper);
  });
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

/// Refuses a batch in which a name is none, or is followed by what cannot stand there. `after` is
/// the token behind the name.
bool IsSyntax(const Token& verb, const Token& kind, const Token& name, const Token& after,
              Refusals& refused) {
  if (!verb.IsOneOf({"CREATE", "ALTER", "DROP", "USE", "BACKUP"})) return true;
  if (name.Kind == sql::TokenKind::Variable || name.Is("CURRENT")) return true;
  const bool reserved = name.Kind == sql::TokenKind::Word && sql::IsReserved(name.Raw);
  const bool isName = name.IsName() && name.IsClosed && !reserved;
  const bool ends = after.Kind == sql::TokenKind::End || after.IsSymbol(";");
  const bool begins = after.Kind == sql::TokenKind::Word && sql::BeginsStatement(after.Raw);
  bool fits = false;
  if (!isName || !after.IsClosed) {
    fits = false;
  } else if (verb.Is("BACKUP")) {
    fits = after.IsOneOf({"TO", "FILE", "FILEGROUP", "READ_WRITE_FILEGROUPS"});
  } else if (verb.Is("ALTER") && kind.Is("DATABASE")) {
    fits = after.IsOneOf({"SET", "MODIFY", "ADD", "REMOVE", "COLLATE"});
  } else if (verb.IsOneOf({"DROP", "USE"})) {
    fits = ends || begins || (after.IsSymbol(",") && verb.Is("DROP"));
  } else {
    fits = ends || after.IsSymbol("(") || after.Kind == sql::TokenKind::Word;
  }
  if (!fits) {
    refused.Add(Reason::Certain, verb.At, isName ? Misplaced(after, name) : Misplaced(name, kind));
  }
  return fits;
}

}  // namespace

bool SimulatedServer::Has(const std::string& name, bool login) const {
  if (login) return Logins.contains(name) || name == "SA";
  return Databases.contains(name) ||
         std::ranges::find(kSystemDatabases, name) != kSystemDatabases.end();
}

// Most batches of a large pack are nothing but rows, and there are millions.
bool SimulatedServer::MayMatter(std::string_view statement) {
  // A bit for each letter that such a word begins with.
  constexpr auto kFirst = [] {
    std::uint32_t bits = 0;
    for (const char letter : {'a', 'c', 'd', 'e', 'g', 'i', 'l', 'n', 'p', 'r', 's', 'u'})
      bits |= 1U << (letter - 'a');
    return bits;
  }();
  sql::Words words(statement);
  for (std::string_view word = words.Next(); !word.empty(); word = words.Next()) {
    if (word == "$(") return true;
    const auto letter = static_cast<unsigned>((word[0] | 0x20) - 'a');
    if (word.size() < 3 || word.size() > 9 || letter >= 26 || (kFirst >> letter & 1U) == 0)
      continue;
    if (word.size() == 6 && EqualsUpper(word, "INSERT")) {
      const auto target = contents_.KnownTarget(words.Rest());
      if (!target) return true;
      words.Skip(*target);
    } else if (EqualsUpper(word.substr(0, 4), "EXEC") || IsTelling(word)) {
      return true;
    }
  }
  return BeginsWithCall(statement);
}

void SimulatedServer::Take(std::string_view statement) {
  if (!MayMatter(statement)) return;
  Compile(statement);
  Refusals refused(false);
  FollowNames(statement, refused);
}

std::vector<Refusal> SimulatedServer::ApplyNames(std::string_view statement) {
  Refusals refused(true);
  if (MayMatter(statement)) FollowNames(statement, refused);
  return std::move(refused.All);
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

// Applies the changes of a batch. Behind a word that asks (IF) it is assumed that the right thing
// was asked: nothing is refused.
void SimulatedServer::FollowNames(std::string_view statement, Refusals& refused) {
  DatabaseContents::Setting setting{false, refused, doubt_};
  if (BeginsWithCall(statement)) {
    ApplyCall(StatementReader(statement, 0), statement, setting);
  }
  sql::Lexer lexer(statement);
  std::size_t rightsEnd = 0;
  bool inSchema = false;
  Token before;
  Token verb = lexer.Next();
  Token kind = lexer.Next();
  Token name = lexer.Next();
  const auto advance = [&] {
    before = std::exchange(verb, std::exchange(kind, std::exchange(name, lexer.Next())));
  };
  for (; verb.Kind != sql::TokenKind::End; advance()) {
    if (verb.At < rightsEnd) continue;
    if (verb.IsOneOf({"IF", "WHILE", "TRY", "RETURN", "GOTO"})) setting.Asked = true;
    // WITH name AS (...), WITH name (...) AS (...)
    if (verb.Is("WITH") && kind.IsName() && (name.Is("AS") || name.IsSymbol("("))) {
      setting.NamesQuery = true;
    }
    // A variable of the command-line tool may have been any name.
    const bool named = verb.Kind == sql::TokenKind::Name && Contains(verb.Raw, "$(");
    if (named || statement.substr(verb.At, 2) == "$(") contents_.BecomeUnsure();
    TakeTableWord(verb, before, statement, setting);
    if (verb.IsOneOf({"GRANT", "DENY", "REVOKE"}) && !before.IsOneOf({"WITH", "REVOKE"})) {
      rightsEnd = contents_.GiveRights(StatementReader(statement, kind.At), setting);
      continue;
    }
    // A body is not executed now.
    if (kind.IsOneOf({"PROC", "PROCEDURE", "FUNCTION", "TRIGGER", "VIEW"}) &&
        verb.IsOneOf({"CREATE", "ALTER"})) {
      const StatementReader reader(statement, kind.At);
      verb.Is("CREATE") ? contents_.Create(reader, setting) : contents_.Alter(reader, setting);
      if (!kind.Is("VIEW")) inProcedures_.Add(UCase(statement));
      return;
    }
    if (verb.IsOneOf({"EXEC", "EXECUTE"})) {
      ApplyCall(StatementReader(statement, kind.At), statement, setting);
    }
    if (before.IsSymbol(",")) continue;
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
      if (!IsSyntax(statementVerb, statementKind, name, ahead.Next(), refused)) return;
      ApplyName(statementVerb, name, login, {setting.Asked || ifExists, refused, doubt_});
    } else if (verb.Is("CREATE")) {
      const bool user = kind.Is("USER") && !setting.Asked;
      // CREATE SCHEMA makes tables in it, in any order.
      if (inSchema && kind.Is("TABLE")) contents_.LoseTables();
      inSchema = inSchema || kind.Is("SCHEMA");
      if (user && !RequireLogin(LoginOf(name, lexer), name.At, refused)) continue;
      contents_.Create(StatementReader(statement, kind.At), setting);
    } else if (verb.Is("ALTER")) {
      contents_.Alter(StatementReader(statement, kind.At), setting);
    } else if (verb.Is("DROP")) {
      contents_.Drop(StatementReader(statement, kind.At), setting);
    } else if (verb.Is("USE")) {
      if (IsNoName(kind, false)) continue;
      if (!IsSyntax(verb, verb, kind, name, refused)) return;
      ApplyName(verb, kind, false, setting);
      contents_.Use(setting.Asked ? "" : UCase(kind.Value()));
    }
  }
}

// Of the words of tables, those that begin no definition.
void SimulatedServer::TakeTableWord(const Token& word, const Token& before,
                                    std::string_view statement,
                                    const DatabaseContents::Setting& setting) {
  const std::size_t behind = word.At + word.Raw.size();
  if (word.Is("INSERT") && !before.IsOneOf({"BULK", "THEN"})) {
    contents_.Insert(StatementReader(statement, behind), TargetText(statement.substr(behind)),
                     setting);
  } else if (word.Is("INTO") && !before.IsOneOf({"INSERT", "MERGE"})) {
    contents_.MayMake(StatementReader(statement, behind).TakeName());
  } else if (word.Is("CONSTRAINT")) {
    contents_.NameConstraint(StatementReader(statement, behind));
  } else if (word.Is("REFERENCES")) {
    contents_.Reference(StatementReader(statement, behind), word.At, setting);
  } else if (word.IsOneOf({"ROLLBACK", "NOEXEC", "PARSEONLY", "SETUSER", "SYSTEM_VERSIONING",
                           "ATTACH", "ATTACH_REBUILD_LOG", "SNAPSHOT"})) {
    // What was made is gone, is not made, is made for another user, has a table beside it, or is a
    // database that has something in it.
    if (!setting.Asked) contents_.BecomeUnsure();
  }
}

void SimulatedServer::ApplyName(const Token& verb, const Token& named, bool login,
                                const DatabaseContents::Setting& setting) {
  const std::string name = named.Value();
  const std::string upper = UCase(name);
  bool there = Has(upper, login);
  const bool required = verb.IsOneOf({"DROP", "ALTER", "USE"}) && !setting.Asked;
  if (!there && required && (login ? unseen_.Logins : unseen_.Databases)) {
    doubt_ = std::string("whether there is a ") + (login ? "login " : "database ") + name;
    there = true;
  }
  const auto refuse = [&](Reason why, const RuntimeError& error) {
    setting.Refused.Add(why, named.At, error);
  };
  auto& names = login ? Logins : Databases;
  if (verb.Is("CREATE")) {
    if (there && !setting.Asked) {
      refuse(Reason::Exists, Exists(name, login));
    } else if (names.insert(upper).second && !login && !setting.Asked) {
      contents_.Make(upper);
    }
  } else if (verb.Is("RESTORE") && !login) {
    names.insert(upper);
    contents_.Forget(upper);
  } else if (verb.Is("DROP")) {
    if (!there && required) refuse(Reason::Missing, CannotDrop(name, login));
    names.erase(upper);
    if (!login) contents_.Forget(upper);
  } else if (!there && required) {
    refuse(Reason::Missing, verb.Is("USE") ? CannotUse(name) : CannotAlter(name, login));
  }
}

}  // namespace talu
