#include "platform/simulated/DatabaseContents.h"

#include <algorithm>
#include <array>
#include <utility>

#include "platform/simulated/ServerMessages.h"
#include "runtime/TextFunctions.h"

namespace talu {
namespace {

using sql::Token;
using sql::TokenKind;

/// In every database. Source: Transact-SQL reference, database-level roles and principals.
constexpr std::array<std::string_view, 14> kFixed = {"DB_OWNER",
                                                     "DB_DATAREADER",
                                                     "DB_DATAWRITER",
                                                     "DB_DDLADMIN",
                                                     "DB_ACCESSADMIN",
                                                     "DB_SECURITYADMIN",
                                                     "DB_BACKUPOPERATOR",
                                                     "DB_DENYDATAREADER",
                                                     "DB_DENYDATAWRITER",
                                                     "PUBLIC",
                                                     "DBO",
                                                     "GUEST",
                                                     "SYS",
                                                     "INFORMATION_SCHEMA"};

/// Procedures that make no user, no role and no table.
constexpr std::array<std::string_view, 19> kHarmless = {"SP_ADDEXTENDEDPROPERTY",
                                                        "SP_UPDATEEXTENDEDPROPERTY",
                                                        "SP_DROPEXTENDEDPROPERTY",
                                                        "SP_FULLTEXT_DATABASE",
                                                        "SP_DB_VARDECIMAL_STORAGE_FORMAT",
                                                        "SP_DBOPTION",
                                                        "SP_DBCMPTLEVEL",
                                                        "SP_TABLEOPTION",
                                                        "SP_INDEXOPTION",
                                                        "SP_ADDTYPE",
                                                        "SP_BINDEFAULT",
                                                        "SP_BINDRULE",
                                                        "SP_ADDMESSAGE",
                                                        "SP_CONFIGURE",
                                                        "SP_SETTRIGGERORDER",
                                                        "SP_ADDLOGIN",
                                                        "SP_GRANTLOGIN",
                                                        "SP_ADDSRVROLEMEMBER",
                                                        "SP_DEFAULTDB"};

bool IsAmong(std::string_view name, const auto& names) {
  return std::ranges::find(names, name) != names.end();
}

/// The argument with this name or at this position, from 0; a null pointer when there is none.
const StatementReader::Argument* Find(const std::vector<StatementReader::Argument>& arguments,
                                      std::size_t position, std::string_view name) {
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    if (arguments[i].Name.empty() ? i == position : arguments[i].Name == name) return &arguments[i];
  }
  return nullptr;
}

}  // namespace

void DatabaseContents::Forget(const std::string& database) {
  databases_.erase(database);
  ForgetTargets();
}

void DatabaseContents::Use(const std::string& database) {
  current_ = database;
  ForgetTargets();
}

void DatabaseContents::BecomeUnsure() {
  for (auto& [name, database] : databases_) database.Principals.IsSure = false;
  LoseTables();
}

void DatabaseContents::Things::Remove(const std::string& name, bool isCertain) {
  const auto there = Names.find(name);
  if (there == Names.end()) return;
  there->second = false;
  if (isCertain) Names.erase(there);
}

bool DatabaseContents::HasPrincipal(const std::string& name, const Setting& setting) const {
  const auto database = databases_.find(current_);
  const std::string upper = UCase(name);
  if (database == databases_.end() || IsAmong(upper, kFixed)) return true;
  const Things& principals = database->second.Principals;
  if (principals.Names.contains(upper)) return true;
  // The server takes an account of Windows in where it needs one.
  if (name.empty() || Contains(name, "\\")) return true;
  if (!principals.IsSure) setting.Doubt = "whether there is a user or role " + name;
  return !principals.IsSure;
}

bool DatabaseContents::Require(const std::string& verb, const std::string& name, std::size_t at,
                               const Setting& setting) {
  if (setting.Asked || HasPrincipal(name, setting)) return true;
  setting.Refused.Add(Refusal::Reason::Certain, at, CannotFind(verb, name));
  return false;
}

// Server message 15023.
void DatabaseContents::MakePrincipal(const std::string& name, std::size_t at,
                                     const Setting& setting) {
  const auto database = databases_.find(current_);
  if (database == databases_.end() || name.empty()) return;
  const std::string upper = UCase(name);
  Things& principals = database->second.Principals;
  const bool isCertain = IsAmong(upper, kFixed) || principals.IsCertain(upper);
  if (isCertain && !setting.Asked) {
    setting.Refused.Add(Refusal::Reason::Certain, at,
                        StatementError("User, group, or role '" + name +
                                       "' already exists in the current database."));
    return;
  }
  principals.Names.insert_or_assign(upper, isCertain || !setting.Asked);
}

void DatabaseContents::TakeAway(const std::string& name, const Setting& setting) {
  const auto database = databases_.find(current_);
  if (database == databases_.end()) return;
  database->second.Principals.Remove(UCase(name), !setting.Asked);
}

void DatabaseContents::Create(StatementReader reader, const Setting& setting) {
  reader.Skip("APPLICATION");
  if (reader.Skip("EXTERNAL")) LoseTables();
  const Token kind = reader.Take();
  const ObjectName name = reader.TakeName();
  if (kind.IsOneOf({"TABLE", "VIEW", "FUNCTION", "SYNONYM"})) MakeTable(name, setting);
  if (!kind.IsOneOf({"USER", "ROLE", "SCHEMA"})) return;
  bool isOwned = true;
  if (!kind.Is("USER") && reader.Skip("AUTHORIZATION")) {
    const ObjectName owner = reader.TakeName();
    isOwned = Require("find the user", owner.Shown(), owner.At, setting);
  }
  if (isOwned && !kind.Is("SCHEMA")) MakePrincipal(name.Shown(), name.At, setting);
}

void DatabaseContents::Alter(StatementReader reader, const Setting& setting) {
  reader.Skip("APPLICATION");
  const Token kind = reader.Take();
  const ObjectName name = reader.TakeName();
  if (kind.Is("SCHEMA")) LoseTables();                    // a table moves
  if (kind.IsOneOf({"VIEW", "FUNCTION"})) MayMake(name);  // CREATE OR ALTER
  if (kind.Is("TABLE") && !setting.Asked && PlaceOf(name).IsMissing()) {
    setting.Refused.Add(Refusal::Reason::Certain, name.At, NoObject(name.Shown()));
  }
  if (!kind.IsOneOf({"USER", "ROLE"})) return;
  const std::string verb = kind.Is("USER") ? "alter the user" : "alter the role";
  if (name.Parts.empty() || !Require(verb, name.Shown(), name.At, setting)) return;
  if (reader.Skip("WITH")) {
    Rename(reader, name.Shown(), setting);
  } else if (kind.Is("ROLE")) {
    ChangeMember(reader, setting);
  }
}

void DatabaseContents::Rename(StatementReader& reader, const std::string& name,
                              const Setting& setting) {
  if (!reader.Skip("NAME") || !reader.SkipSymbol("=")) return;
  const ObjectName now = reader.TakeName();
  TakeAway(name, setting);
  MakePrincipal(now.Shown(), now.At, setting);
}

void DatabaseContents::ChangeMember(StatementReader& reader, const Setting& setting) {
  const Token how = reader.Take();
  if (!how.IsOneOf({"ADD", "DROP"}) || !reader.Skip("MEMBER")) return;
  const ObjectName member = reader.TakeName();
  Require(how.Is("ADD") ? "add the principal" : "drop the principal", member.Shown(), member.At,
          setting);
}

void DatabaseContents::Drop(StatementReader reader, const Setting& setting) {
  reader.Skip("APPLICATION");
  const Token kind = reader.Take();
  if (kind.IsOneOf({"TABLE", "VIEW", "SYNONYM"})) DropTables(reader, kind.Is("TABLE"), setting);
  if (!kind.IsOneOf({"USER", "ROLE"})) return;
  const bool ifExists = reader.Skip("IF") && reader.Skip("EXISTS");
  const ObjectName name = reader.TakeName();
  const std::string verb = kind.Is("USER") ? "drop the user" : "drop the role";
  if (!ifExists && !Require(verb, name.Shown(), name.At, setting)) return;
  TakeAway(name.Shown(), setting);
}

std::size_t DatabaseContents::GiveRights(StatementReader reader, const Setting& setting) {
  while (!reader.Now().IsOneOf({"TO", "FROM"})) {
    if (reader.Now().Kind == TokenKind::End || reader.Now().IsSymbol(";")) return 0;
    if (reader.Now().IsSymbol("(")) {
      reader.SkipParentheses();
    } else {
      reader.Take();
    }
  }
  const std::size_t at = reader.Take().At;
  do {
    if (reader.Skip("PUBLIC")) continue;  // a keyword
    const ObjectName name = reader.TakeName();
    if (name.Parts.empty()) break;
    Require("find the user", name.Shown(), name.At, setting);
  } while (reader.SkipSymbol(","));
  return at;
}

void DatabaseContents::Call(const ObjectName& procedure, StatementReader arguments,
                            const Setting& setting) {
  const std::string name = procedure.Last();
  if (IsAmong(name, kHarmless)) return;
  const auto given = arguments.TakeArguments();
  const auto text = [&](std::size_t position, std::string_view parameter) {
    const auto* argument = Find(given, position, parameter);
    return argument == nullptr ? std::optional<std::string>("") : argument->Text();
  };
  const bool adds = name == "SP_ADDROLEMEMBER";
  const bool user = name == "SP_ADDUSER" || name == "SP_GRANTDBACCESS";
  const bool role = name == "SP_ADDROLE" || name == "SP_ADDAPPROLE" || name == "SP_ADDGROUP";
  const bool dropsUser = name == "SP_DROPUSER" || name == "SP_REVOKEDBACCESS";
  const bool dropsRole =
      name == "SP_DROPROLE" || name == "SP_DROPAPPROLE" || name == "SP_DROPGROUP";
  const bool members = adds || name == "SP_DROPROLEMEMBER";
  const bool principal = user || role || dropsUser || dropsRole;
  if (name == "SP_RENAME") {
    const auto kind = text(2, "@OBJTYPE");
    if (!kind || (UCase(*kind) != "COLUMN" && UCase(*kind) != "INDEX")) LoseTables();
  } else if (procedure.Parts.size() > 2 || !(members || principal)) {
    BecomeUnsure();  // in another database, or not known
  } else if (members) {
    // Server messages 15014 and 15410.
    const auto group = text(0, "@ROLENAME");
    const auto member = text(1, "@MEMBERNAME");
    if (setting.Asked) return;
    if (group && !HasPrincipal(*group, setting)) {
      setting.Refused.Add(
          Refusal::Reason::Certain, procedure.At,
          StatementError("The role '" + *group + "' does not exist in the current database."));
    } else if (member && !HasPrincipal(*member, setting)) {
      setting.Refused.Add(
          Refusal::Reason::Certain, procedure.At,
          StatementError("User or role '" + *member + "' does not exist in this database."));
    }
  } else {
    auto made = user ? text(1, "@NAME_IN_DB") : text(0, dropsUser ? "@NAME_IN_DB" : "@ROLENAME");
    if (user && made && made->empty()) made = text(0, "@LOGINAME");
    if (!made) {
      BecomeUnsure();
    } else if (dropsUser || dropsRole) {
      TakeAway(*made, setting);
    } else {
      MakePrincipal(*made, procedure.At, setting);
    }
  }
}

}  // namespace talu
