// What the simulated server does about the names that it keeps.

#include <algorithm>
#include <array>
#include <initializer_list>

#include "platform/simulated/SimulatedServer.h"
#include "platform/simulated/SqlScanner.h"
#include "runtime/TextFunctions.h"

namespace talu {
namespace {

bool IsOneOf(const std::string& word, std::initializer_list<const char*> list) {
  return std::ranges::find(list, word) != list.end();
}

/// Whether the statement can name a database or a login at all; most rows of data do not.
bool MayNameAny(std::string_view statement) {
  constexpr std::array<std::string_view, 3> kWords = {"DATABASE", "LOGIN", "USE"};
  for (std::size_t at = 0; at < statement.size(); ++at) {
    const char first = UCase(statement[at]);
    if (first != 'D' && first != 'L' && first != 'U') continue;
    for (const std::string_view word : kWords) {
      if (EqualsUpper(statement.substr(at, word.size()), word)) return true;
    }
  }
  return false;
}

std::string NameOf(const std::string& word) {
  return word.starts_with('[') || word.starts_with('"') ? word.substr(1) : word;
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
  return Databases.contains(name) || IsOneOf(name, {"MASTER", "MODEL", "MSDB", "TEMPDB"});
}

// Carries out what changes the names; the first refusal ends the statement. Where the statement
// asks first (IF), it is taken to have asked the right thing: nothing fails.
void SimulatedServer::Carry(const std::string& statement) {
  if (!MayNameAny(statement)) return;
  bool asked = false;
  std::string before;
  for (SqlScanner words(statement); !words.AtEnd(); words.Advance()) {
    const std::string verb = UCase(words.Word());
    const std::string kind = UCase(words.Word(1));
    if (verb == "IF") asked = true;
    const bool makes = verb == "CREATE" || verb == "ALTER";
    if (makes && IsOneOf(kind, {"PROC", "PROCEDURE", "FUNCTION", "TRIGGER"}))
      return;  // not run now
    const bool part = IsOneOf(before, {"GRANT", "DENY", "REVOKE", ","});
    before = verb;
    if (part) continue;
    if (kind == "DATABASE" || kind == "LOGIN") {
      const bool ifExists = UCase(words.Word(2)) == "IF";  // IF EXISTS name
      if (ifExists) words.Advance(), words.Advance();
      CarryOne(verb, NameOf(words.Word(2)), kind == "LOGIN", asked || ifExists);
    } else if (verb == "USE") {
      CarryOne(verb, NameOf(words.Word(1)), false, asked);
    }
  }
}

void SimulatedServer::CarryOne(const std::string& verb, const std::string& name, bool login,
                               bool asked) {
  const std::string upper = UCase(name);
  // Not a name: the current database, and statements about its parts.
  if (!login && IsOneOf(upper, {"CURRENT", "SCOPED", "AUDIT", "ENCRYPTION", "HINT"})) return;
  const bool there = Has(upper, login);
  auto& names = login ? Logins : Databases;
  if (verb == "CREATE") {
    if (there && !asked) throw Exists(name, login);
    names.insert(upper);
  } else if (verb == "RESTORE" && !login) {
    names.insert(upper);
  } else if (verb == "DROP") {
    if (!there && !asked) throw CannotDrop(name, login);
    names.erase(upper);
  } else if (verb == "ALTER") {
    if (!there && !asked) throw CannotAlter(name, login);
  } else if (verb == "USE") {
    if (!there && !asked) throw CannotUse(name);
  }
}

}  // namespace talu
