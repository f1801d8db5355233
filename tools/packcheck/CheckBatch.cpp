#include "CheckBatch.h"

#include <algorithm>
#include <optional>

#include "database/BatchNames.h"
#include "runtime/ErrorTrap.h"
#include "runtime/TextFunctions.h"

namespace talu::packcheck {
namespace {

const char* Keyword(bool login) {
  return login ? "LOGIN" : "DATABASE";
}

const char* Thing(bool login) {
  return login ? "login" : "database";
}

/// The name as the build extracts it.
std::optional<std::string> RecordedName(const std::string& text, bool login) {
  const ErrorTrap pass([](const RuntimeError&) {});
  return CreatedName(pass, text, Keyword(login));
}

void CheckName(const SqlBatch& batch, const SqlStatement& created, Findings& findings) {
  const char* thing = Thing(created.Login);
  const std::optional<std::string> recorded = RecordedName(batch.Text, created.Login);
  if (!recorded) {
    findings.Add("SQL-CREATE-LAST", created.Place, {thing});
    return;
  }
  const std::string name = Trim(*recorded);
  if (name == created.Name && !Contains(name, ",")) return;
  findings.Add("SQL-CREATE-NAME", created.Place, {Shown(name), thing, Shown(created.Name)});
}

/// Checks where the build moves the database files.
void CheckFiles(const SqlBatch& batch, const SqlStatement& created, const SqlFacts& facts,
                Findings& findings) {
  const Position drive = InStr(batch.Text, ":\\") - 1;
  if (drive < 1) {
    findings.Add("SQL-DB-DRIVE", created.Place);
    return;
  }
  const Position ending = InStr(drive, batch.Text, ".mdf");
  if (ending == 0) {
    findings.Add("SQL-DB-MDF", created.Place);
    return;
  }
  const Position backslash = InStrRev(batch.Text, "\\", ending);
  const std::string folder = Mid(batch.Text, drive, backslash - drive);
  for (const SqlText& file : facts.FileNames) {
    if (!Contains(file.Text, folder)) {
      findings.Add("SQL-DB-FOLDERS", file.Place, {Shown(file.Text), Shown(folder)});
      continue;
    }
    const std::string rest = Replace(file.Text, folder, "");
    if (rest.starts_with('\\') && InStrRev(rest, "\\") == 1) continue;
    findings.Add("SQL-DB-SUBFOLDER", file.Place, {Shown(file.Text), Shown(rest)});
  }
}

void CheckKind(const SqlBatch& batch, const SqlFacts& facts, bool login, Findings& findings) {
  const SqlStatement* first = nullptr;
  for (const SqlStatement& statement : facts.Statements) {
    if (statement.Verb != SqlStatement::Kind::Create || statement.Login != login) continue;
    if (statement.Spelled != std::string("CREATE ") + Keyword(login)) {
      findings.Add("SQL-CREATE-CASE", statement.Place,
                   {Shown(statement.Spelled), Keyword(login), Thing(login)});
    } else if (first != nullptr) {
      findings.Add("SQL-CREATE-TWO", statement.Place, {Thing(login)});
    } else {
      first = &statement;
    }
  }
  const bool recorded = login ? CreatesLogin(batch.Text) : CreatesDatabase(batch.Text);
  if (first == nullptr) {
    if (!recorded || !(login ? facts.CommentCreatesLogin : facts.CommentCreatesDatabase)) return;
    // When nothing can be extracted, that error also fails the build.
    const std::optional<std::string> name = RecordedName(batch.Text, login);
    findings.Add("SQL-CREATE-COMMENT", batch.Start,
                 {name ? Shown(Trim(*name)) : "nothing", Keyword(login)});
    return;
  }
  if (!recorded) {
    findings.Add("SQL-DB-FILENAME", first->Place);
    return;
  }
  CheckName(batch, *first, findings);
  if (!login) CheckFiles(batch, *first, facts, findings);
}

/// The statement of the batch that names this database; the first statement for an empty name. A
/// null pointer when there is none.
const SqlStatement* Naming(const SqlFacts& facts, const std::string& bareName) {
  for (const SqlStatement& statement : facts.Statements) {
    if (statement.Login) continue;
    if (bareName.empty() || BareName(statement.Name) == bareName) return &statement;
  }
  return nullptr;
}

}  // namespace

void CheckCreated(const SqlBatch& batch, const SqlFacts& facts, Findings& findings) {
  CheckKind(batch, facts, false, findings);
  CheckKind(batch, facts, true, findings);
  for (const SqlText& password : facts.Passwords) {
    findings.Add("PW-CLEAR", password.Place, {"The password of a login", "the pack"});
  }
}

void BackupNames::Collect(const SqlBatch& batch, const SqlFacts& facts) {
  if (!MayNameDatabase(batch.Text)) return;
  for (const std::string_view statement : kNamingStatements) {
    try {
      if (const auto name = NamedDatabase(batch.Text, statement)) Add(*name, batch, facts);
    } catch (const RuntimeError& error) {
      const SqlStatement* naming = Naming(facts, "");
      findings_.Add(error.Number == error::kOverflow ? KnownRule("SQL-BACKUP-LONG")
                                                     : KnownRule("SQL-BACKUP-CUT"),
                    naming != nullptr ? naming->Place : batch.Start, {Trim(statement)});
      return;
    }
  }
}

void BackupNames::Add(const std::string& candidate, const SqlBatch& batch, const SqlFacts& facts) {
  const std::string name = BackedUpName(candidate);
  const std::string bare = UCase(name);
  const SqlStatement* naming = bare.empty() ? nullptr : Naming(facts, bare);
  if (Contains(list_, candidate)) {
    if (naming == nullptr || Covers(bare)) return;
    const auto longer = std::ranges::find_if(
        names_, [&](const auto& listed) { return Contains(listed.first, bare); });
    if (longer == names_.end()) return;
    merged_.insert(bare);
    findings_.Add("SQL-BACKUP-MERGED", naming->Place, {Shown(name), Shown(longer->second)});
    return;
  }
  if (Length(candidate) > kLongestName) return;
  list_ += "," + candidate;
  names_.emplace(bare, name);
  if (naming != nullptr || bare.empty()) return;
  const SqlStatement* first = Naming(facts, "");
  findings_.Add("SQL-BACKUP-NAME", first != nullptr ? first->Place : batch.Start, {Shown(name)});
}

bool BackupNames::Covers(const std::string& bareName) const {
  return names_.contains(bareName) || merged_.contains(bareName);
}

}  // namespace talu::packcheck
