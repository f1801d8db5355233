#include "CheckTwice.h"

#include <algorithm>

#include "database/BatchNames.h"
#include "runtime/ErrorTrap.h"
#include "runtime/TextFunctions.h"
#include "sql/Lexer.h"

namespace talu::packcheck {
namespace {

const char* Thing(const SqlStatement& statement) {
  return statement.Login ? "login" : "database";
}

std::string KeyOf(const SqlStatement& statement) {
  return Thing(statement) + (" " + BareName(statement.Name));
}

std::string Named(const Place& place) {
  return place.File + ", line " + std::to_string(place.Line);
}

/// Whether the place is the same line: then its script is listed twice, which is told there.
bool IsSameLine(const Place& one, const Place& other) {
  return UCase(one.File) == UCase(other.File) && one.Line == other.Line;
}

/// Whether something in the batch may be passed over.
bool HasCondition(const std::string& text) {
  sql::Lexer lexer(text);
  for (sql::Token token = lexer.Next(); token.Kind != sql::TokenKind::End; token = lexer.Next()) {
    if (token.Is("IF")) return true;
  }
  return false;
}

}  // namespace

void MadeOnce::TakeNames(const SqlBatch& batch, const SqlFacts& facts) {
  for (const SqlStatement& statement : facts.Statements) {
    const std::string key = KeyOf(statement);
    if (statement.Verb == SqlStatement::Kind::Drop) {
      names_.erase(key);
      std::erase_if(files_, [&key](const auto& file) { return file.second.Of == key; });
    }
    if (statement.Verb != SqlStatement::Kind::Create || HasCondition(batch.Text)) continue;
    const auto [earlier, isNew] = names_.emplace(key, statement.Place);
    if (isNew || IsSameLine(earlier->second, statement.Place)) continue;
    findings_.Add("SQL-CREATE-AGAIN", statement.Place,
                  {Thing(statement), statement.Name, Named(earlier->second)});
  }
}

void MadeOnce::TakeFiles(const SqlBatch& batch, const SqlFacts& facts) {
  if (facts.FileNames.empty()) return;
  const std::string folder = MovedFolder(batch.Text);
  if (folder.empty() || HasCondition(batch.Text)) return;
  const auto created = std::ranges::find_if(facts.Statements, [](const SqlStatement& statement) {
    return !statement.Login && statement.Verb == SqlStatement::Kind::Create;
  });
  const std::string of = created != facts.Statements.end() ? KeyOf(*created) : "";
  for (const SqlText& file : facts.FileNames) {
    const std::string moved = UCase(Replace(file.Text, folder, ""));
    const auto [found, isNew] = files_.emplace(moved, File{file, of});
    const SqlText& earlier = found->second.Named;
    if (isNew || found->second.Of == of) continue;
    findings_.Add("SQL-DB-SAME-FILE", file.Place,
                  {Shown(file.Text), Shown(earlier.Text), Named(earlier.Place)});
  }
}

std::string MovedFolder(const std::string& batch) {
  if (!CreatesDatabase(batch)) return "";
  const ErrorTrap pass([](const RuntimeError&) {});
  return DataFolder(pass, batch);
}

}  // namespace talu::packcheck
