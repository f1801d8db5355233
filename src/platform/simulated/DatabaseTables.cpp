// How the simulated server handles the tables that it keeps.

#include <algorithm>

#include "platform/simulated/DatabaseContents.h"
#include "platform/simulated/ServerMessages.h"
#include "runtime/TextFunctions.h"
#include "sql/Lexer.h"

namespace talu {

using sql::TokenKind;
using Reason = Refusal::Reason;

void DatabaseContents::LoseTables() {
  for (auto& [name, database] : databases_) database.Tables.IsSure = false;
  ForgetTargets();
}

void DatabaseContents::ForgetTargets() {
  targets_.clear();
  lastTarget_ = {};
}

// Nothing is known of what the server brings along, of passing tables and of other servers.
DatabaseContents::TablePlace DatabaseContents::PlaceOf(const ObjectName& name) {
  const std::size_t parts = name.Parts.size();
  const std::string last = name.Last();
  if (parts == 0 || parts > 3 || last.starts_with('#') || last.starts_with("SYS")) return {};
  const std::string schema = parts > 1 ? UCase(name.Parts[parts - 2]) : "";
  if (schema == "SYS" || schema == "INFORMATION_SCHEMA") return {};
  const std::string named = parts > 2 ? UCase(name.Parts[0]) : "";
  const auto database = databases_.find(named.empty() ? current_ : named);
  if (database == databases_.end()) return {};
  return {&database->second.Tables, (schema.empty() ? "DBO" : schema) + "." + last};
}

// Server message 2714.
void DatabaseContents::MakeTable(const ObjectName& name, const Setting& setting) {
  const TablePlace place = PlaceOf(name);
  if (place.Tables == nullptr) return;
  const bool isCertain = place.Tables->IsCertain(place.Name);
  if (isCertain && !setting.Asked) {
    setting.Refused.Add(Reason::Certain, name.At,
                        StatementError("There is already an object named '" + name.Parts.back() +
                                       "' in the database."));
  }
  place.Tables->Names.insert_or_assign(place.Name, isCertain || !setting.Asked);
}

// Server message 3701.
void DatabaseContents::DropTables(StatementReader& reader, bool isTable, const Setting& setting) {
  const bool asked = (reader.Skip("IF") && reader.Skip("EXISTS")) || setting.Asked;
  do {
    const ObjectName name = reader.TakeName();
    const TablePlace place = PlaceOf(name);
    if (place.IsMissing() && isTable && !asked) {
      setting.Refused.Add(Reason::Certain, name.At, CannotFind("drop the table", name.Shown()));
    }
    if (place.Tables != nullptr) place.Tables->Remove(place.Name, !setting.Asked);
  } while (reader.SkipSymbol(","));
  ForgetTargets();
}

// Server message 208. It is told once of each table, or a script of rows would say nothing else.
void DatabaseContents::Insert(StatementReader reader, std::string_view raw,
                              const Setting& setting) {
  if (reader.Skip("TOP")) {
    reader.SkipParentheses();
    reader.Skip("PERCENT");
  }
  reader.Skip("INTO");
  const ObjectName name = reader.TakeName();
  if (name.Parts.empty() || (setting.NamesQuery && name.Parts.size() == 1)) return;
  const TablePlace place = PlaceOf(name);
  if (place.IsMissing() && !setting.Asked) {
    setting.Refused.Add(Reason::Certain, name.At,
                        StatementError("Invalid object name '" + name.Shown() + "'."));
    place.Tables->Names.emplace(place.Name, false);
  }
  if (!raw.empty()) targets_.emplace(raw);
}

void DatabaseContents::NameConstraint(StatementReader reader) {
  constraint_ = "'" + reader.TakeName().Shown() + "' ";
  if (reader.Skip("FOREIGN") && reader.Skip("KEY")) reader.SkipParentheses();
  referenceAt_ = reader.Now().At;
}

// Server message 1767. The server gives a name to a constraint that has none.
void DatabaseContents::Reference(StatementReader reader, std::size_t at, const Setting& setting) {
  const ObjectName name = reader.TakeName();
  if (setting.Asked || !PlaceOf(name).IsMissing()) return;
  setting.Refused.Add(Reason::Certain, name.At,
                      StatementError("Foreign key " + (at == referenceAt_ ? constraint_ : "") +
                                     "references invalid table '" + name.Shown() + "'."));
}

void DatabaseContents::MayMake(const ObjectName& name) {
  const TablePlace place = PlaceOf(name);
  if (place.Tables != nullptr) place.Tables->Names.emplace(place.Name, false);
}

std::optional<std::size_t> DatabaseContents::KnownTarget(std::string_view behind) {
  if (databases_.empty()) return 0;
  // Rows of one table mostly stand together, and are written alike.
  const std::string_view next = behind.substr(std::min(lastTarget_.size(), behind.size()), 1);
  const bool isLast = (next == " " || next == "(") && behind.starts_with(lastTarget_);
  if (!isLast || lastTarget_.empty()) {
    const auto target = targets_.find(TargetText(behind));
    if (target == targets_.end()) return {};
    lastTarget_ = *target;
  }
  return lastTarget_.size();
}

std::string_view TargetText(std::string_view behind) {
  sql::Lexer lexer(behind);
  sql::Token token = lexer.Next();
  if (token.Is("INTO")) token = lexer.Next();
  std::size_t end = 0;
  for (; token.IsName() && token.IsClosed; token = lexer.Next()) {
    end = token.At + token.Raw.size();
    token = lexer.Next();
    if (!token.IsSymbol(".")) break;
    end = token.At + 1;
  }
  return behind.substr(0, end);
}

}  // namespace talu
