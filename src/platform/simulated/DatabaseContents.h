#pragma once

#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>

#include "platform/simulated/Refusals.h"
#include "platform/simulated/StatementReader.h"

namespace talu {

/// The users, roles and tables in the databases that the statements made. Of a database that was
/// there before, nothing is known, nor of any after a statement whose effect is not seen: then
/// nothing is refused.
class DatabaseContents {
 public:
  /// How a statement stands in its batch.
  struct Setting {
    /// Something was asked before it: it may not run.
    bool Asked;
    Refusals& Refused;
    /// Set to what of the statement cannot be told.
    std::string& Doubt;
    /// The batch gives a name to a query, into which rows can be inserted.
    bool NamesQuery = false;
  };

  // Databases by their upper-cased names.
  /// A new database, with nothing in it but what each has.
  void Make(const std::string& database) { databases_[database] = {}; }
  void Forget(const std::string& database);
  /// What follows is in this database; an empty name for one that is not known.
  void Use(const std::string& database);
  /// Statements that are not seen may have changed anything.
  void BecomeUnsure();

  /// Takes a statement, with `reader` behind its verb: CREATE, ALTER and DROP of users, roles,
  /// tables and what takes rows as one, and of what has an owner. Any other is passed over.
  void Create(StatementReader reader, const Setting& setting);
  void Alter(StatementReader reader, const Setting& setting);
  void Drop(StatementReader reader, const Setting& setting);
  /// GRANT, DENY or REVOKE. Returns where those begin who get the right, in bytes, or 0.
  std::size_t GiveRights(StatementReader reader, const Setting& setting);
  /// Takes an INSERT, with `reader` behind it; `raw` is its target as written.
  void Insert(StatementReader reader, std::string_view raw, const Setting& setting);
  /// Takes the name of a constraint, for `Reference`.
  void NameConstraint(StatementReader reader);
  /// Takes the table behind a REFERENCES that stands at this byte.
  void Reference(StatementReader reader, std::size_t at, const Setting& setting);
  /// A table or the like may be there now: SELECT ... INTO makes one.
  void MayMake(const ObjectName& name);
  /// For the text behind an INSERT: how long its target is, if that was found to take rows.
  std::optional<std::size_t> KnownTarget(std::string_view behind);
  /// Tables may have come and gone.
  void LoseTables();
  /// Takes a call of one of the server's own procedures.
  void Call(const ObjectName& procedure, StatementReader arguments, const Setting& setting);

 private:
  /// Things of a database.
  struct Things {
    bool IsSure = true;
    /// By their upper-cased names, of tables with the schema; whether it is certain that they are
    /// there.
    std::map<std::string, bool> Names;

    bool IsCertain(const std::string& name) const {
      const auto there = Names.find(name);
      return IsSure && there != Names.end() && there->second;
    }
    void Remove(const std::string& name, bool isCertain);
  };
  struct Database {
    Things Principals;
    Things Tables;
  };
  /// Where a table is, and its name there; no place for one of which nothing is known.
  struct TablePlace {
    Things* Tables = nullptr;
    std::string Name;

    bool IsMissing() const {
      return Tables != nullptr && Tables->IsSure && !Tables->Names.contains(Name);
    }
  };
  void ForgetTargets();
  TablePlace PlaceOf(const ObjectName& name);
  void MakeTable(const ObjectName& name, const Setting& setting);
  void DropTables(StatementReader& reader, bool isTable, const Setting& setting);

  void MakePrincipal(const std::string& name, std::size_t at, const Setting& setting);
  void TakeAway(const std::string& name, const Setting& setting);
  void Rename(StatementReader& reader, const std::string& name, const Setting& setting);
  /// Whether there is such a user or role, for all that can be told.
  bool HasPrincipal(const std::string& name, const Setting& setting) const;
  /// Refuses the statement if there is no such user or role: "Cannot {verb} '{name}', because ...".
  bool Require(const std::string& verb, const std::string& name, std::size_t at,
               const Setting& setting);
  void ChangeMember(StatementReader& reader, const Setting& setting);

  std::map<std::string, Database> databases_;
  std::string current_;
  /// Targets of INSERT as written that were found in the current database.
  std::set<std::string, std::less<>> targets_;
  std::string_view lastTarget_;
  std::string constraint_;
  std::size_t referenceAt_ = 0;
};

/// The text behind INSERT up to the end of its target; empty when that is not a name.
std::string_view TargetText(std::string_view behind);

}  // namespace talu
