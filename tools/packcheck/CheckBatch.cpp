#include "CheckBatch.h"

#include <algorithm>

#include "runtime/Int16.h"
#include "runtime/RuntimeError.h"
#include "runtime/TextFunctions.h"

namespace talu::packcheck {
namespace {

constexpr std::size_t kLongestName = 128;

const char* Keyword(bool login) {
  return login ? "LOGIN" : "DATABASE";
}

const char* Thing(bool login) {
  return login ? "login" : "database";
}

/// The name as the build cuts it out: from the blank behind the keyword to the next one. Raises 5.
std::string RecordedName(const std::string& text, bool login) {
  const Position statement = InStr(text, std::string("CREATE ") + Keyword(login));
  const Position start = InStr(InStr(statement, text, Keyword(login)), text, " ");
  const Position end = InStr(start + 1, text, " ");
  return Mid(text, start, end - start);
}

/// Whether the batch has the keywords as the build looks for them.
bool IsRecorded(const std::string& text, bool login) {
  return login ? Contains(text, "CREATE LOGIN")
               : Contains(text, "CREATE DATABASE") && Contains(text, "FILENAME");
}

void CheckName(const SqlBatch& batch, const SqlStatement& created, Findings& findings) {
  const char* thing = Thing(created.Login);
  try {
    const std::string name = Trim(RecordedName(batch.Text, created.Login));
    if (name == created.Name && !Contains(name, ",")) return;
    findings.Add("SQL-CREATE-NAME", created.Place, {Shown(name), thing, Shown(created.Name)});
  } catch (const RuntimeError&) {
    findings.Add("SQL-CREATE-LAST", created.Place, {thing});
  }
}

/// Checks where the database files go, as the build moves them.
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
  const bool recorded = IsRecorded(batch.Text, login);
  if (first == nullptr) {
    if (!recorded || !(login ? facts.CommentCreatesLogin : facts.CommentCreatesDatabase)) return;
    std::string name = "nothing";
    try {
      name = Shown(Trim(RecordedName(batch.Text, login)));
    } catch (const RuntimeError&) {
      // Then the cut raises an error instead, which fails the build too.
    }
    findings.Add("SQL-CREATE-COMMENT", batch.Start, {name, Keyword(login)});
    return;
  }
  if (!recorded) {
    findings.Add("SQL-DB-FILENAME", first->Place);
    return;
  }
  CheckName(batch, *first, findings);
  if (!login) CheckFiles(batch, *first, facts, findings);
}

/// What the backup takes out of a batch, and where it gives up.
struct BackupCut {
  std::vector<std::string> Candidates;
  /// The statement in which a run-time error ended the search; empty without one.
  std::string Failed;
  bool TooLong = false;
};

/// A position as the backup keeps it. Raises 6.
Int16 Find(Int16 start, const std::string& text, std::string_view what) {
  return InStr(int{start}, text, what);
}

std::string CutDelimited(const std::string& text, std::string_view statement) {
  const Int16 keyword = Find(Find(1, text, statement), text, "DATABASE");
  Int16 start = Find(keyword, text, " ");
  Int16 end = Find(start + 1, text, " ");
  std::string name = Trim(Mid(text, int{start}, int{end - start}));
  if (Contains(name, "[")) {
    start = Find(keyword, text, "[");
    end = Find(start, text, "]");
    name = Trim(Mid(text, int{start}, int{end - start} + 1));
  }
  return name;
}

BackupCut CutBackupNames(const std::string& text) {
  BackupCut cut;
  try {
    for (const char* statement : {"CREATE DATABASE", "ALTER DATABASE"}) {
      cut.Failed = statement;
      if (Contains(text, statement)) cut.Candidates.push_back(CutDelimited(text, statement));
    }
    cut.Failed = "DROP DATABASE";
    if (Contains(text, cut.Failed)) {
      const Int16 keyword = Find(Find(1, text, cut.Failed), text, "DATABASE");
      cut.Candidates.push_back(Trim(Mid(text, int{Find(keyword, text, " ")})));
    }
    cut.Failed = "USE";
    if (Contains(text, "USE ")) {
      cut.Candidates.push_back(Trim(Mid(text, int{Find(Find(1, text, "USE"), text, " ")})));
    }
    cut.Failed.clear();
  } catch (const RuntimeError& error) {
    cut.TooLong = error.Number == error::Overflow;
  }
  return cut;
}

/// A listed name as BACKUP DATABASE gets it.
std::string BackedUpName(std::string name) {
  if (Contains(name, "[")) name = Mid(name, 2);
  if (name.ends_with(']')) name.pop_back();
  return Trim(name);
}

/// The statement of the batch that names this database; the first one for an empty name. A null
/// pointer without one.
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
  if (!Contains(batch.Text, "DATABASE") && !Contains(batch.Text, "USE ")) return;
  const BackupCut cut = CutBackupNames(batch.Text);
  for (const std::string& candidate : cut.Candidates) Add(candidate, batch, facts);
  if (cut.Failed.empty()) return;
  const SqlStatement* naming = Naming(facts, "");
  const Place& place = naming != nullptr ? naming->Place : batch.Start;
  findings_.Add(cut.TooLong ? KnownRule("SQL-BACKUP-LONG") : KnownRule("SQL-BACKUP-CUT"), place,
                {cut.Failed});
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
  if (candidate.size() > kLongestName) return;
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
