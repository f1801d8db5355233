// What the simulated server does about the names that it keeps.

#include <algorithm>
#include <array>
#include <initializer_list>

#include "platform/simulated/SimulatedServer.h"
#include "platform/simulated/SqlScanner.h"
#include "runtime/TextFunctions.h"

namespace talu {
namespace {

/// Whether `word` is one of the words of `list`, which are in upper case.
bool Is(std::string_view word, std::initializer_list<std::string_view> list) {
  return std::ranges::any_of(list, [word](auto upper) { return EqualsUpper(word, upper); });
}

/// Whether the statement can name a database or a login at all; most rows of data do not, and a
/// large pack has millions.
bool MayNameAny(std::string_view statement) {
  constexpr std::array<std::string_view, 3> kWords = {"DATABASE", "LOGIN", "USE"};
  for (std::size_t at = 0; at < statement.size(); ++at) {
    const char lower = static_cast<char>(statement[at] | 0x20);
    if (lower != 'd' && lower != 'l' && lower != 'u') continue;
    if (at > 0 && IsSqlWordCharacter(statement[at - 1])) continue;
    for (const std::string_view word : kWords) {
      const std::size_t end = at + word.size();
      if (end < statement.size() && IsSqlWordCharacter(statement[end])) continue;
      if (EqualsUpper(statement.substr(at, word.size()), word)) return true;
    }
  }
  return false;
}

std::string NameOf(std::string_view word) {
  return std::string(word.starts_with('[') || word.starts_with('"') ? word.substr(1) : word);
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
  return Databases.contains(name) || Is(name, {"MASTER", "MODEL", "MSDB", "TEMPDB"});
}

// Carries out what changes the names; the first refusal ends the statement. Where the statement
// asks first (IF), it is taken to have asked the right thing: nothing fails.
void SimulatedServer::Carry(std::string_view statement) {
  if (!MayNameAny(statement)) return;
  bool asked = false;
  std::string_view before;
  for (SqlScanner words(statement); !words.AtEnd(); words.Advance()) {
    const std::string_view verb = words.Word();
    const std::string_view kind = words.Word(1);
    if (Is(verb, {"IF"})) asked = true;
    // A body is not run now.
    if (Is(kind, {"PROC", "PROCEDURE", "FUNCTION", "TRIGGER"}) && Is(verb, {"CREATE", "ALTER"})) {
      return;
    }
    const bool part = Is(before, {"GRANT", "DENY", "REVOKE", ","});
    before = verb;
    if (part) continue;
    if (Is(kind, {"DATABASE", "LOGIN"})) {
      const bool login = Is(kind, {"LOGIN"});
      const bool ifExists = Is(words.Word(2), {"IF"});  // IF EXISTS name
      if (ifExists) {
        words.Advance();
        words.Advance();
      }
      CarryOne(verb, NameOf(words.Word(2)), login, asked || ifExists);
    } else if (Is(verb, {"USE"})) {
      CarryOne(verb, NameOf(kind), false, asked);
    }
  }
}

void SimulatedServer::CarryOne(std::string_view verb, const std::string& name, bool login,
                               bool asked) {
  const std::string upper = UCase(name);
  // Not a name: the current database, and statements about its parts.
  if (!login && Is(upper, {"CURRENT", "SCOPED", "AUDIT", "ENCRYPTION", "HINT"})) return;
  const bool there = Has(upper, login);
  auto& names = login ? Logins : Databases;
  if (Is(verb, {"CREATE"})) {
    if (there && !asked) throw Exists(name, login);
    names.insert(upper);
  } else if (Is(verb, {"RESTORE"}) && !login) {
    names.insert(upper);
  } else if (Is(verb, {"DROP"})) {
    if (!there && !asked) throw CannotDrop(name, login);
    names.erase(upper);
  } else if (Is(verb, {"ALTER"})) {
    if (!there && !asked) throw CannotAlter(name, login);
  } else if (Is(verb, {"USE"})) {
    if (!there && !asked) throw CannotUse(name);
  }
}

}  // namespace talu
