#pragma once

#include <map>
#include <string>
#include <string_view>

#include "platform/simulated/Refusals.h"
#include "platform/simulated/StatementReader.h"

namespace talu {

/// The users and roles in the databases that the statements made. Of a database that was there
/// before, nothing is known, nor of any after a statement whose effect is not seen: then nothing is
/// refused.
class DatabaseContents {
 public:
  /// How a statement stands in its batch.
  struct Setting {
    /// Something was asked before it: it may not run.
    bool Asked;
    Refusals& Refused;
    /// Set to what of the statement cannot be told.
    std::string& Doubt;
  };

  // Databases by their upper-cased names.
  /// A new database, with nothing in it but what each has.
  void Make(const std::string& database) { databases_[database] = {}; }
  void Forget(const std::string& database) { databases_.erase(database); }
  /// What follows is in this database; an empty name for one that is not known.
  void Use(const std::string& database) { current_ = database; }
  /// Statements that are not seen may have changed anything.
  void BecomeUnsure();

  /// Takes a statement, with `reader` behind its verb: CREATE, ALTER and DROP of users and roles,
  /// and of what has an owner. Any other is passed over.
  void Create(StatementReader reader, const Setting& setting);
  void Alter(StatementReader reader, const Setting& setting);
  void Drop(StatementReader reader, const Setting& setting);
  /// GRANT, DENY or REVOKE. Returns where those begin who get the right, in bytes, or 0.
  std::size_t GiveRights(StatementReader reader, const Setting& setting);
  /// Takes a call of one of the server's own procedures.
  void Call(const ObjectName& procedure, StatementReader arguments, const Setting& setting);

 private:
  struct Database {
    bool IsSure = true;
    /// Upper-cased; whether it is certain that they are there.
    std::map<std::string, bool> Principals;
  };

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
};

}  // namespace talu
