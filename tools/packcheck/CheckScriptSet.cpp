#include "CheckScriptSet.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <utility>

#include "CheckScriptText.h"
#include "runtime/TextFunctions.h"

namespace talu::packcheck {
namespace {

using sql::TokenKind;

/// Words that begin no statement, but do begin the rest of one.
constexpr std::array<std::string_view, 23> kGoesOn = {
    "AND",   "AS",     "CROSS", "ELSE", "END",   "FOR",    "FROM", "FULL",
    "GROUP", "HAVING", "INNER", "INTO", "JOIN",  "LEFT",   "ON",   "OR",
    "ORDER", "OUTER",  "RIGHT", "THEN", "UNION", "VALUES", "WHERE"};

bool GoesOn(std::string_view statement) {
  std::size_t end = 0;
  while (end < statement.size() && std::isalpha(static_cast<unsigned char>(statement[end])) != 0) {
    ++end;
  }
  if (end == 0) return !statement.empty() && Contains("(),", statement.substr(0, 1));
  const std::string_view word = statement.substr(0, end);
  return std::ranges::any_of(kGoesOn,
                             [&](std::string_view upper) { return EqualsUpper(word, upper); });
}

/// "table" for TABLE.
std::string KindOfObject(std::string_view word) {
  if (EqualsUpper(word, "PROC")) return "procedure";
  std::string lower(word);
  for (char& letter : lower) letter = static_cast<char>(letter | 0x20);
  return lower;
}

/// Whether the author meant the line as GO, although it is not.
bool IsMeantAsGo(std::string_view line) {
  const std::string_view stripped = Stripped(line);
  if (!EqualsUpper(stripped.substr(0, 2), "GO")) return false;
  return stripped.size() == 2 || std::string_view(" \t;-/").find(stripped[2]) != std::string::npos;
}

}  // namespace

ScriptSet::ScriptSet(CheckedPack& pack, const TypeScripts& scripts, std::size_t backedUp)
    : pack_(pack),
      findings_(pack.Findings),
      folder_(scripts.Folder.substr(1)),
      key_(scripts.Key),
      backedUp_(backedUp),
      server_(pack.Machine, pack.Findings),
      made_(pack.Findings),
      backup_(pack.Findings) {}

void ScriptSet::Check(const Configuration& configuration) {
  for (const CfgLine& listed : configuration.Values(key_)) {
    ++index_;
    CheckFile(listed);
  }
  if (HasUnfinished()) TellUnfinished("never run");
  server_.End();
  CheckUnlisted(configuration);
}

void ScriptSet::CheckFile(const CfgLine& listed) {
  file_ = folder_ + std::string(listed.Text);
  if (!pack_.HasFile(file_)) {
    findings_.Add("SQL-NOT-THERE", listed.Place(), {Shown(file_)});
    return;
  }
  std::string text = *pack_.Read(file_);
  // A comment that is left over does no harm in front of the next batch.
  if (!HasUnfinished()) batch_.Start.File = file_;
  sql_.Restart();
  reader_.Begin();
  hasDirective_ = false;
  splitTold_ = false;
  toldRegion_ = 0;
  toldText_ = 0;
  const std::string meant = MeantText(pack_, std::move(text), file_);
  TakeText(meant);
}

void ScriptSet::TakeText(const std::string& text) {
  text_ = text;
  NumberedLines lines(text);
  std::string_view line;
  int number = 0;
  while (lines.Next(line, number)) {
    if (TrimView(line).empty()) {
      if (reader_.BatchMode()) CheckTextLine(line);
      continue;
    }
    TakeLine(line, number);
  }
}

void ScriptSet::TakeLine(std::string_view line, int number) {
  const ScriptLine what = reader_.Take(line, TrimView(line));
  if (what == ScriptLine::BatchDirective) {
    TakeDirective(line, number, "--taluGO");
  } else if (what == ScriptLine::LineDirective) {
    TakeDirective(line, number, "--taluLineByLine");
    if (lineModeFrom_.empty()) lineModeFrom_ = file_;
  } else if (what == ScriptLine::Gathered) {
    TakeBatchLine(line, number);
  } else if (what == ScriptLine::Batch) {
    CheckGo(number, line);
    FinishBatch();
  } else if (what == ScriptLine::Statement) {
    TakeStatementLine(line, number);
  } else {
    TellMalformed(line, number);
    hasDirective_ = true;
    TakeLine(line, number);
  }
}

void ScriptSet::TellMalformed(std::string_view line, int number) {
  NumberedLines lines(text_.substr(static_cast<std::size_t>(line.data() - text_.data())));
  std::string_view later;
  int laterNumber = 0;
  while (lines.Next(later, laterNumber)) {
    if (!ContainsUpper(later, kBatchDirective) && !ContainsUpper(later, kLineDirective)) continue;
    findings_.Add("SQL-LATE-DIRECTIVE", At(number, line),
                  {std::to_string(number + laterNumber - 1)});
    reader_.Take(later, later);
    return;
  }
  findings_.Add("SQL-NO-DIRECTIVE", At(number, line));
  reader_.Take(kBatchDirective, kBatchDirective);
}

// At the top of a script, a comment may follow the directive. A text loses the line with it.
void ScriptSet::TakeDirective(std::string_view line, int number, std::string_view directive) {
  const bool alone = Stripped(line).size() == directive.size();
  const bool onTop = !std::exchange(hasDirective_, true) && Stripped(line).starts_with("--");
  const bool inText = sql_.Inside() == TokenKind::String || sql_.Inside() == TokenKind::Name;
  if ((!alone && !onTop) || inText) {
    findings_.Add("SQL-DIRECTIVE-INSIDE", At(number, line), {std::string(directive)});
  }
}

void ScriptSet::TakeBatchLine(std::string_view line, int number) {
  CheckBatchLine(line, number);
  batch_.Add(file_, number, line);
  sql_.TakeLine(file_, number, line);
}

void ScriptSet::CheckBatchLine(std::string_view line, int number) {
  if (ContainsUpper(line, kLineDirective)) findings_.Add("SQL-LINE-IN-BATCH", At(number, line));
  CheckTextLine(line);
  if (sql_.Inside() != TokenKind::End) return;
  if (IsMeantAsGo(line)) findings_.Add("SQL-GO-TAIL", At(number, line), {Shown(line)});
  CheckToolLine(line, number);
}

// A line for the command-line tool that the script was written for.
void ScriptSet::CheckToolLine(std::string_view line, int number) {
  const std::string_view stripped = Stripped(line);
  if (stripped.size() > 1 && stripped[0] == ':' &&
      std::isalpha(static_cast<unsigned char>(stripped[1])) != 0) {
    findings_.Add("SQL-SQLCMD", At(number, line), {Shown(stripped)});
  }
}

// Blanks and empty lines within a text may matter.
void ScriptSet::CheckTextLine(std::string_view line) {
  const bool changed = line.empty() || TrimView(line).size() != line.size();
  if (sql_.Inside() != TokenKind::String || !changed) return;
  if (toldText_ == sql_.OpenedLine()) return;
  toldText_ = sql_.OpenedLine();
  findings_.Add("SQL-TEXT-LINES", At(toldText_, line));
}

void ScriptSet::CheckGo(int number, std::string_view line) {
  if (sql_.Inside() == TokenKind::End || toldRegion_ == sql_.OpenedLine()) return;
  toldRegion_ = sql_.OpenedLine();
  findings_.Add(
      sql_.Inside() == TokenKind::Comment ? KnownRule("SQL-GO-COMMENT") : KnownRule("SQL-GO-TEXT"),
      At(number, line), {std::to_string(toldRegion_)});
}

void ScriptSet::FinishBatch() {
  if (batch_.Text.empty()) return;
  if (batch_.Start.File != file_) {
    TellUnfinished("put in front of the first batch of " + file_);
  }
  CheckCreated(batch_, sql_.Facts, findings_);
  made_.TakeNames(batch_, sql_.Facts);
  made_.TakeFiles(batch_, sql_.Facts);
  server_.Take(batch_, sql_.Facts, true);
  TakeOrder(batch_);
  NoteUses();
  batch_.Clear();
}

void ScriptSet::TakeOrder(const SqlBatch& batch) {
  CheckOrder(batch, sql_.Facts, sql_.Shape, findings_);
  if (index_ <= backedUp_) backup_.Collect(batch, sql_.Facts, sql_.Shape.HasCode());
  const sql::BatchShape::Spot& object = sql_.Shape.Object();
  // A USE before it in the same batch counts as well.
  const bool used = std::ranges::any_of(sql_.Facts.Statements, [&](const SqlStatement& statement) {
    return statement.Verb == SqlStatement::Kind::Use && statement.Place.Line <= object.Line;
  });
  if (object.Line == 0 || !inMaster_ || used) return;
  findings_.Add("SQL-NO-USE", batch.PlaceOf(object.Line), {KindOfObject(object.Word)});
  inMaster_ = false;  // told once
}

void ScriptSet::TakeStatementLine(std::string_view line, int number) {
  if (!batch_.Text.empty()) {
    if (batch_.Start.File != file_) TellUnfinished("discarded by " + file_);
    batch_.Clear();
    sql_.ClearBatch();
  }
  if (!std::exchange(hasDirective_, true)) {
    findings_.Add("SQL-LINE-LEAK", At(number, line), {lineModeFrom_});
  }
  if (IsMeantAsGo(line)) {
    findings_.Add("SQL-LINE-GO", At(number, line), {Shown(line)});
    sql_.Restart();
    splitTold_ = false;
    return;
  }
  const std::string_view stripped = Stripped(line);
  if (sql_.Inside() == TokenKind::End) CheckToolLine(line, number);
  const bool goesOn = sql_.Inside() == TokenKind::End && GoesOn(stripped);
  sql_.TakeLine(file_, number, line);
  const bool open = sql_.Inside() != TokenKind::End || sql_.Depth() > 0;
  if ((open || goesOn || stripped.ends_with(',')) && !std::exchange(splitTold_, true)) {
    findings_.Add("SQL-LINE-SPLIT", At(number, line));
  }
  if (!open && !goesOn) splitTold_ = false;
  for (const SqlStatement& statement : sql_.Facts.Statements) {
    if (statement.Verb != SqlStatement::Kind::Create) continue;
    findings_.Add("SQL-CREATE-LINE", statement.Place, {statement.Login ? "login" : "database"});
  }
  const SqlBatch statement{std::string(line), At(number, line), {number}};
  if (!sql_.Facts.Statements.empty()) made_.TakeNames(statement, sql_.Facts);
  server_.Take(statement, sql_.Facts, false);
  TakeOrder(statement);
  NoteUses();
}

// Keeps the database names and clears the batch's facts.
void ScriptSet::NoteUses() {
  for (const SqlStatement& statement : sql_.Facts.Statements) {
    const std::string name = BareName(statement.Name);
    if (statement.Verb == SqlStatement::Kind::Use) inMaster_ = name == "MASTER";
    if (statement.Login || name.empty() || !known_.insert(name).second) continue;
    if (statement.Verb == SqlStatement::Kind::Create) continue;
    if (std::ranges::find(kSystemDatabases, name) != kSystemDatabases.end()) continue;
    used_.push_back({statement.Name, statement.Place});
  }
  sql_.ClearBatch();
}

// Whether something is gathered that the server would have to see.
bool ScriptSet::HasUnfinished() const {
  return !batch_.Text.empty() && (sql_.Shape.HasCode() || sql_.Inside() != TokenKind::End);
}

void ScriptSet::TellUnfinished(const std::string& what) {
  findings_.Add("SQL-LAST-GO", batch_.Start, {what});
}

void ScriptSet::CheckUnlisted(const Configuration& configuration) {
  const SimulatedDisk::Node* folder = pack_.Find(folder_.substr(0, folder_.size() - 1));
  if (folder == nullptr) return;
  // As Windows finds them, which drops blanks behind a name.
  std::set<const SimulatedDisk::Node*> listed;
  for (const CfgLine& line : configuration.Values(key_)) {
    listed.insert(pack_.Find(folder_ + std::string(line.Text)));
  }
  for (const auto& [upper, node] : folder->Children) {
    if (node->IsFolder || !upper.ends_with(".SQL") || listed.contains(node.get())) continue;
    findings_.Add("SQL-NOT-LISTED", {folder_ + node->Name, 0, node->Name}, {key_});
  }
}

}  // namespace talu::packcheck
