// ALTER TABLE. What SQLite has no statement for is done to its text of the table.
#include <algorithm>

#include "Messages.h"
#include "TableDefinition.h"
#include "Text.h"
#include "TokenCopier.h"

namespace talu::standin {
namespace {

[[noreturn]] void FailAt(const Token& token) {
  Rewriter::FailAt(token);
}

}  // namespace

std::vector<std::string> TableDefinition::Alter(Range statement) {
  Lexer lexer(batch_, statement.Begin, statement.End);
  lexer.Next();
  lexer.Next();
  table_ = rewriter_.TakeTableName(lexer);
  text_ = rewriter_.DefinitionOf(table_);
  if (text_.empty()) throw SqlFailure(message::kNoSuchObject(table_.Table), true);
  const std::string before = text_;
  bool isChecked = true;
  if (TakeIf(lexer, "WITH")) {
    isChecked = !TakeIf(lexer, "NOCHECK");
    if (isChecked && !TakeIf(lexer, "CHECK")) FailAt(lexer.Peek());
  }
  const Token action = lexer.Next();
  if (IsAmong(action, "CHECK NOCHECK ENABLE DISABLE") &&
      IsAmong(lexer.Peek(), "CONSTRAINT TRIGGER")) {
    // References are on or off as a whole; other constraints stay, and no trigger runs.
    if (lexer.Peek().Is("TRIGGER") || IsAmong(action, "ENABLE DISABLE")) return {};
    return {std::string("PRAGMA foreign_keys = ") + (action.Is("CHECK") ? "ON" : "OFF")};
  }
  if (action.Is("DROP")) {
    Drop(lexer);
  } else if (action.Is("ALTER") && TakeIf(lexer, "COLUMN")) {
    const Column column = TakeColumn(lexer);
    std::size_t begin = 0;
    std::size_t end = 0;
    FindItem(QuoteName(column.Name) + " ", begin, end);
    const std::string old = text_.substr(begin, end - begin);
    if (old.find("AUTOINCREMENT") != std::string::npos) FailAt(action);
    const std::size_t more = old.find(kMore);
    text_.replace(begin, end - begin,
                  Declare(column, false) + (more == std::string::npos ? "" : old.substr(more)));
  } else if (action.Is("ADD")) {
    do {
      if (IsConstraint(lexer.Peek())) {
        AddConstraint(lexer, isChecked);
      } else {
        const Token next = lexer.Peek();
        const Column column = TakeColumn(lexer);
        if (column.IsIdentity || !keys_.empty()) FailAt(next);
        // SQLite gives the rows their values; its text gets the mark.
        const std::string name = QuoteName(column.Name) + " ";
        statements_.push_back("ALTER TABLE " + table_.Quoted() + " ADD COLUMN " +
                              Declare(column, false));
        statements_.push_back("PRAGMA writable_schema = ON");
        statements_.push_back(
            "UPDATE main.sqlite_schema SET sql = replace(sql, " + QuoteText(", " + name) + ", " +
            QuoteText(", " + std::string(kItem) + name) +
            ") WHERE type = 'table' AND name = " + QuoteText(table_.Table) + " COLLATE NOCASE");
        statements_.push_back("PRAGMA writable_schema = RESET");
      }
    } while (TakeSymbol(lexer, ","));
  } else {
    FailAt(action);
  }
  if (lexer.Peek().Kind != TokenKind::End) FailAt(lexer.Peek());
  if (text_ != before) {
    const bool isMixed = !statements_.empty() && statements_.front().starts_with("ALTER");
    if (isMixed || !table_.Prefix.empty()) FailAt(action);
    statements_.insert(
        statements_.begin(),
        {"PRAGMA writable_schema = ON",
         "UPDATE main.sqlite_schema SET sql = " + QuoteText(text_) +
             " WHERE type = 'table' AND name = " + QuoteText(table_.Table) + " COLLATE NOCASE",
         "PRAGMA writable_schema = RESET"});
  }
  return std::move(statements_);
}

/// The item of the text that begins so. Raises 207.
void TableDefinition::FindItem(const std::string& beginning, std::size_t& begin,
                               std::size_t& end) const {
  begin = FoldName(text_).find(FoldName(std::string(kItem) + beginning));
  if (begin == std::string::npos)
    throw SqlFailure(message::kInvalidColumn(Lexer(beginning).Next().Value()), true);
  begin += kItem.size();
  const std::size_t next = text_.find(std::string(", ").append(kItem), begin);
  end = next == std::string::npos ? text_.size() - 1 : next;
}

void TableDefinition::Drop(Lexer& lexer) {
  bool isColumn = false;
  do {
    if (TakeIf(lexer, "COLUMN")) {
      isColumn = true;
    } else if (TakeIf(lexer, "CONSTRAINT")) {
      isColumn = false;
    }
    if (lexer.Peek().Is("IF")) FailAt(lexer.Peek());
    const std::string name = TakeName(lexer);
    if (isColumn) {
      statements_.push_back("ALTER TABLE " + table_.Quoted() + " DROP COLUMN " + QuoteName(name));
      continue;
    }
    const std::string folded = FoldName(text_);
    const std::string constraint = FoldName("CONSTRAINT " + QuoteName(name) + " ");
    std::size_t begin = folded.find(std::string(kMore) + constraint);
    if (begin != std::string::npos) {  // a column's
      const std::size_t end = std::min(text_.find(kMore, begin + 1),
                                       text_.find(std::string(", ").append(kItem), begin));
      text_.erase(begin, std::min(end, text_.size() - 1) - begin);
    } else if ((begin = folded.find(", " + std::string(kItem) + constraint)) != std::string::npos) {
      const std::size_t end =
          std::min(text_.find(std::string(", ").append(kItem), begin + 1), text_.size() - 1);
      const std::string item = text_.substr(begin, end - begin);
      // SQLite has an index of its own for these, which the text must not lose.
      if (item.find(" PRIMARY KEY (") != std::string::npos ||
          item.find(" UNIQUE (") != std::string::npos) {
        throw NotKnown("DROP CONSTRAINT of a key");
      }
      text_.erase(begin, end - begin);
    } else {
      statements_.push_back("DROP INDEX " + QuoteName(table_.Table + "." + name));
    }
  } while (TakeSymbol(lexer, ","));
}

void TableDefinition::AddConstraint(Lexer& lexer, bool isChecked) {
  Lexer ahead = lexer;
  std::string name;
  if (TakeIf(ahead, "CONSTRAINT")) name = TakeName(ahead);
  const std::string named = name.empty() ? "" : "CONSTRAINT " + QuoteName(name) + " ";
  if (!name.empty() && FoldName(text_).find(FoldName(named)) != std::string::npos) {
    throw SqlFailure({message::kObjectExists(name), message::kConstraintFailed()});
  }
  if (ahead.Peek().Is("DEFAULT")) {
    lexer = ahead;
    const std::string value = TakeDefault(lexer);
    if (!TakeIf(lexer, "FOR")) FailAt(lexer.Peek());
    std::size_t begin = 0;
    std::size_t end = 0;
    FindItem(QuoteName(TakeName(lexer)) + " ", begin, end);
    if (TakeIf(lexer, "WITH") && !TakeIf(lexer, "VALUES")) FailAt(lexer.Peek());
    text_.insert(end, std::string(kMore) + named + value);
    return;
  }
  TakeTableConstraint(lexer);
  if (!keys_.empty()) {
    std::string columns;
    for (const std::string& column : keys_.back().Columns)
      columns += (columns.empty() ? "" : ", ") + QuoteName(column);
    const std::string index =
        name.empty() ? std::string(keys_.back().IsPrimary ? "PK" : "UQ") + columns : name;
    statements_.push_back("CREATE UNIQUE INDEX " + QuoteName(table_.Table + "." + index) + " ON " +
                          QuoteName(table_.Table) + " (" + columns + ")");
    keys_.clear();
    return;
  }
  text_.insert(text_.size() - 1, std::string(", ").append(kItem) + constraints_.back());
  if (!isChecked) return;
  if (Token kind = ahead.Next(); kind.Is("CHECK")) {
    TakeIf(ahead, "NOT");
    if (ahead.Peek().IsSymbol("(")) {
      rewriter_.Check("CHECK", "SELECT COUNT(*) FROM " + QuoteName(table_.Table) + " WHERE NOT " +
                                   rewriter_.RewriteExpression(TakeGroup(ahead)));
    }
  } else {
    rewriter_.Check("FOREIGN KEY",
                    "SELECT COUNT(*) FROM pragma_foreign_key_check(" + QuoteText(table_.Table) +
                        ") WHERE parent = " + QuoteText(parent_) + " COLLATE NOCASE");
  }
}

}  // namespace talu::standin
