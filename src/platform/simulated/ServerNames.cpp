// How the simulated server handles the names that it keeps.

#include <algorithm>
#include <array>
#include <utility>

#include "platform/simulated/SimulatedServer.h"
#include "runtime/TextFunctions.h"
#include "sql/Lexer.h"

namespace talu {
namespace {

using sql::Token;

constexpr std::array<std::string_view, 4> kSystemDatabases = {"MASTER", "MODEL", "MSDB", "TEMPDB"};

/// Whether the statement can name a database or a login at all; most rows of data do not, and a
/// large pack has millions.
bool MayNameAny(std::string_view statement) {
  constexpr std::array<std::string_view, 3> kWords = {"DATABASE", "LOGIN", "USE"};
  for (std::size_t at = 0; at < statement.size(); ++at) {
    const char lower = static_cast<char>(statement[at] | 0x20);
    if (lower != 'd' && lower != 'l' && lower != 'u') continue;
    if (at > 0 && sql::IsWordPart(statement[at - 1])) continue;
    for (const std::string_view word : kWords) {
      const std::size_t end = at + word.size();
      if (end < statement.size() && sql::IsWordPart(statement[end])) continue;
      if (EqualsUpper(statement.substr(at, word.size()), word)) return true;
    }
  }
  return false;
}

/// Server messages 1801, 15025, 3701, 15151, 5011 and 911.
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

}  // namespace

bool SimulatedServer::Has(const std::string& name, bool login) const {
  if (login) return Logins.contains(name) || name == "SA";
  return Databases.contains(name) ||
         std::ranges::find(kSystemDatabases, name) != kSystemDatabases.end();
}

// Applies changes of names; the first refusal ends the statement. A statement that asks first (IF)
// is assumed to have asked the right thing: nothing fails.
void SimulatedServer::ApplyNames(std::string_view statement) {
  if (!MayNameAny(statement)) return;
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
      return;
    }
    if (before.IsOneOf({"GRANT", "DENY", "REVOKE"}) || before.IsSymbol(",")) continue;
    if (kind.IsOneOf({"DATABASE", "LOGIN"})) {
      const Token statementVerb = verb;
      const bool login = kind.Is("LOGIN");
      const bool ifExists = name.Is("IF");  // IF EXISTS name
      if (ifExists) {
        advance();
        advance();
      }
      ApplyName(statementVerb, name, login, asked || ifExists);
    } else if (verb.Is("USE")) {
      ApplyName(verb, kind, false, asked);
    }
  }
}

void SimulatedServer::ApplyName(const Token& verb, const Token& named, bool login, bool asked) {
  // Not a name: the current database, and statements about its parts.
  if (!login && named.IsOneOf({"CURRENT", "SCOPED", "AUDIT", "ENCRYPTION", "HINT"})) return;
  const std::string name = named.Value();
  const std::string upper = UCase(name);
  const bool there = Has(upper, login);
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
