#include "CheckBatch.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "database/BatchNames.h"
#include "runtime/ErrorTrap.h"
#include "runtime/TextFunctions.h"
#include "sql/Lexer.h"
#include "sql/Names.h"

namespace talu::packcheck {
namespace {

using sql::BatchShape;

const char* Keyword(bool login) {
  return login ? "LOGIN" : "DATABASE";
}

const char* Thing(bool login) {
  return login ? "login" : "database";
}

/// What the build cuts out of a batch.
struct Cut {
  /// The name that it records, if it can; the folder that it replaces.
  std::optional<std::string> Name;
  std::string Folder;
  /// An error on the way fails the build.
  bool NameFails = false;
  bool FolderFails = false;
};

Cut CutOut(const std::string& text, bool login) {
  Cut cut;
  const ErrorTrap name([&cut](const RuntimeError&) { cut.NameFails = true; });
  cut.Name = CreatedName(name, text, Keyword(login));
  const ErrorTrap folder([&cut](const RuntimeError&) { cut.FolderFails = true; });
  if (!login) cut.Folder = DataFolder(folder, text);
  return cut;
}

void CheckName(const Cut& cut, const SqlStatement& created, Findings& findings) {
  const char* thing = Thing(created.Login);
  if (!cut.Name) {
    findings.Add("SQL-CREATE-LAST", created.Place, {thing});
    return;
  }
  const std::string name = Trim(*cut.Name);
  if (name == created.Name && !Contains(name, ",")) return;
  findings.Add("SQL-CREATE-NAME", created.Place, {Shown(name), thing, Shown(created.Name)});
}

/// Checks where the build moves the database files.
void CheckFiles(const SqlBatch& batch, const Cut& cut, const SqlStatement& created,
                const SqlFacts& facts, Findings& findings) {
  if (cut.FolderFails) {
    findings.Add(Contains(batch.Text, ":\\") ? KnownRule("SQL-DB-MDF") : KnownRule("SQL-DB-DRIVE"),
                 created.Place);
    return;
  }
  for (const SqlText& file : facts.FileNames) {
    if (!Contains(file.Text, cut.Folder)) {
      findings.Add("SQL-DB-FOLDERS", file.Place, {Shown(file.Text), Shown(cut.Folder)});
      continue;
    }
    const std::string rest = Replace(file.Text, cut.Folder, "");
    if (rest.starts_with('\\') && InStrRev(rest, "\\") == 1) continue;
    findings.Add("SQL-DB-SUBFOLDER", file.Place, {Shown(file.Text), Shown(rest)});
  }
}

/// A batch that creates nothing but has the words, in a comment, a text or a right that is granted.
void CheckMention(const SqlBatch& batch, bool login, Findings& findings) {
  const Cut cut = CutOut(batch.Text, login);
  const std::string words = std::string("CREATE ") + Keyword(login);
  const Place place = batch.PlaceOf(words);
  if (cut.NameFails) {
    findings.Add("SQL-CREATE-FAILS", place, {words, "no blank ends a name behind them"});
  } else if (cut.FolderFails) {
    findings.Add("SQL-CREATE-FAILS", place,
                 {words + " and FILENAME", "there is no path to an .mdf file beside them"});
  } else {
    findings.Add("SQL-CREATE-MENTION", place, {words, Shown(Trim(*cut.Name)), Thing(login)});
  }
}

/// Why it is uncertain that a creation runs with its batch.
const char* WhyUncertain(BatchShape::Condition when) {
  return when == BatchShape::Condition::If ? "an IF decides whether it runs"
                                           : "only a call of the procedure runs it";
}

void TellUnseen(const SqlStatement& created, Findings& findings) {
  findings.Add("SQL-CREATE-UNSEEN", created.Place,
               {Thing(created.Login), Shown(created.Name), WhyUncertain(created.When)});
}

void CheckKind(const SqlBatch& batch, const SqlFacts& facts, bool login, Findings& findings) {
  const SqlStatement* first = nullptr;
  for (const SqlStatement& statement : facts.Statements) {
    if (statement.Verb != SqlStatement::Kind::Create || statement.Login != login) continue;
    if (statement.Spelled != std::string("CREATE ") + Keyword(login)) {
      if (statement.When != BatchShape::Condition::None) {
        TellUnseen(statement, findings);
        continue;
      }
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
    if (recorded) CheckMention(batch, login, findings);
    return;
  }
  if (!recorded) {
    if (first->When != BatchShape::Condition::None) {
      TellUnseen(*first, findings);
    } else {
      findings.Add("SQL-DB-FILENAME", first->Place);
    }
    return;
  }
  const Cut cut = CutOut(batch.Text, login);
  CheckName(cut, *first, findings);
  if (first->When != BatchShape::Condition::None) {
    findings.Add("SQL-CREATE-IF", first->Place,
                 {Thing(login), Shown(first->Name), WhyUncertain(first->When)});
  }
  if (!login) CheckFiles(batch, cut, *first, facts, findings);
}

/// Whether a text that is run may make a database or a login.
bool MakesSome(const std::string& text, bool login) {
  sql::Lexer lexer(text);
  bool created = false;
  for (sql::Token token = lexer.Next(); token.Kind != sql::TokenKind::End; token = lexer.Next()) {
    if (created && token.Is(Keyword(login))) {
      return !lexer.Next().IsOneOf({"AUDIT", "ENCRYPTION", "SCOPED"});
    }
    created = token.Is("CREATE");
  }
  return false;
}

/// Finds what a batch makes by running texts, unless the build records something for it.
void CheckRunTexts(const SqlBatch& batch, bool login, Findings& findings) {
  if (login ? CreatesLogin(batch.Text) : CreatesDatabase(batch.Text)) return;
  sql::Lexer lexer(batch.Text);
  bool isMessage = false;
  for (sql::Token token = lexer.Next(); token.Kind != sql::TokenKind::End; token = lexer.Next()) {
    if (token.Kind == sql::TokenKind::Word) isMessage = token.IsOneOf({"PRINT", "RAISERROR"});
    if (token.Kind != sql::TokenKind::String || isMessage) continue;
    if (!MakesSome(token.Value(), login)) continue;
    findings.Add("SQL-CREATE-PROC", batch.PlaceOfByte(token.At),
                 {"EXEC", Thing(login), Keyword(login)});
  }
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

void SqlBatch::Add(const std::string& file, int number, std::string_view line) {
  if (Text.empty()) Start = {file, number, std::string(line)};
  Text.append(kCrLf).append(TrimView(line));
  Lines.push_back(number);
}

void SqlBatch::Clear() {
  Text.clear();
  Lines.clear();
}

Place SqlBatch::PlaceOf(std::string_view words) const {
  std::string_view rest = Text;
  for (const int number : Lines) {
    rest.remove_prefix(std::min(kCrLf.size(), rest.size()));
    const std::string_view line = rest.substr(0, rest.find(kCrLf));
    if (Contains(line, words)) return {Start.File, number, std::string(line)};
    rest.remove_prefix(line.size());
  }
  return Start;
}

Place SqlBatch::PlaceOf(int number) const {
  if (number == Start.Line) return Start;
  std::string_view rest = Text;
  for (const int line : Lines) {
    rest.remove_prefix(std::min(kCrLf.size(), rest.size()));
    const std::size_t end = std::min(rest.find(kCrLf), rest.size());
    if (line == number) return {Start.File, number, std::string(rest.substr(0, end))};
    rest.remove_prefix(end);
  }
  return {Start.File, number, Start.Text};
}

// A batch begins with a line end, a line that is read by itself does not. A line feed alone may
// stand within a line.
Place SqlBatch::PlaceOfByte(std::size_t at) const {
  std::size_t line = 0;
  for (std::size_t end = Text.find(kCrLf, 1); end < at; end = Text.find(kCrLf, end + 1)) ++line;
  return PlaceOf(Lines.at(line));
}

void CheckOrder(const SqlBatch& batch, const SqlFacts& facts, const BatchShape& shape,
                Findings& findings) {
  for (const BatchShape::Spot& spot : shape.NotFirst()) {
    findings.Add("SQL-GO-BEFORE", batch.PlaceOf(spot.Line), {UCase(spot.Word)});
  }
  for (const SqlText& variable : facts.Variables) {
    findings.Add("SQL-VARIABLE", variable.Place, {Shown(variable.Text)});
  }
  for (const BatchShape::Spot& spot : shape.Makers()) {
    const bool login = Contains(UCase(spot.Word), "LOGIN");
    findings.Add("SQL-CREATE-PROC", batch.PlaceOf(spot.Line),
                 {UCase(spot.Word), Thing(login), Keyword(login)});
  }
  if (shape.HasCall()) {
    CheckRunTexts(batch, false, findings);
    CheckRunTexts(batch, true, findings);
  }
  std::set<std::string> created;
  for (const SqlStatement& statement : facts.Statements) {
    if (statement.Login) continue;
    const std::string name = BareName(statement.Name);
    if (statement.Verb == SqlStatement::Kind::Create) created.insert(name);
    if (statement.Verb == SqlStatement::Kind::Use && created.contains(name)) {
      findings.Add("SQL-USE-SAME", statement.Place, {statement.Name});
    }
  }
  const BatchShape::Result& result = shape.FirstResult();
  if (result.UnseenLine == 0 || !shape.NotFirst().empty()) return;
  findings.Add("SQL-ROWS", batch.PlaceOf(result.Line), {std::to_string(result.UnseenLine)});
}

std::optional<std::string> RecordedName(const std::string& text, bool login) {
  return CutOut(text, login).Name;
}

void CheckCreated(const SqlBatch& batch, const SqlFacts& facts, Findings& findings) {
  CheckKind(batch, facts, false, findings);
  CheckKind(batch, facts, true, findings);
  for (const SqlText& password : facts.Passwords) {
    findings.Add("PW-CLEAR", password.Place, {"The password of a login", "the pack"});
  }
}

void BackupNames::Collect(const SqlBatch& batch, const SqlFacts& facts, bool hasCode) {
  if (!MayNameDatabase(batch.Text)) return;
  for (const std::string_view statement : kNamingStatements) {
    try {
      if (const auto name = NamedDatabase(batch.Text, statement)) {
        Add(*name, batch.PlaceOf(statement), facts, hasCode);
      }
    } catch (const RuntimeError& error) {
      const SqlStatement* naming = Naming(facts, "");
      findings_.Add(error.Number == error::kOverflow ? KnownRule("SQL-BACKUP-LONG")
                                                     : KnownRule("SQL-BACKUP-CUT"),
                    naming != nullptr ? naming->Place : batch.Start, {Trim(statement)});
      return;
    }
  }
}

void BackupNames::Add(const std::string& candidate, const Place& place, const SqlFacts& facts,
                      bool hasCode) {
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
  const bool isPlain = sql::IsPlainName(name);
  if (bare.empty() || (naming == nullptr && isPlain && !hasCode)) return;
  if (Contains(name, "$(")) return;  // a variable that is left over has its own finding
  if (naming != nullptr) {
    if (!isPlain) findings_.Add("SQL-BACKUP-BRACKETS", naming->Place, {name});
    if (std::ranges::find(kSystemDatabases, bare) != kSystemDatabases.end()) {
      findings_.Add("SQL-BACKUP-SYSTEM", naming->Place,
                    {bare == "TEMPDB" ? "tries" : "makes", name});
    }
    return;
  }
  const SqlStatement* first = Naming(facts, "");
  findings_.Add("SQL-BACKUP-NAME", first != nullptr ? first->Place : place, {Shown(name)});
}

bool BackupNames::Covers(const std::string& bareName) const {
  return names_.contains(bareName) || merged_.contains(bareName);
}

}  // namespace talu::packcheck
