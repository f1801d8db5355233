// ALTER TABLE. What SQLite has no statement for is done to its text of the table.
#include <algorithm>

#include "Messages.h"
#include "TableDefinition.h"
#include "Text.h"

namespace talu::standin {

std::vector<std::string> TableDefinition::Alter() {
  text_ = rewriter_.Environment().DefinitionOf(table_.Prefix, table_.Table);
  if (text_.empty()) throw SqlFailure(message::kNoSuchObject(table_.Table), true);
  const std::string before = text_;
  bool isChecked = true;
  if (reader_.TakeIf("WITH")) {
    isChecked = !reader_.TakeIf("NOCHECK");
    if (isChecked) reader_.Expect("CHECK");
  }
  const Token action = reader_.Take();
  const Token what = reader_.Next();
  if (IsAmong(action, "CHECK NOCHECK ENABLE DISABLE") && IsAmong(what, "CONSTRAINT TRIGGER")) {
    // References are on or off as a whole; other constraints stay, and no trigger runs.
    if (what.Is("TRIGGER") || IsAmong(action, "ENABLE DISABLE")) return {};
    return {std::string("PRAGMA foreign_keys = ") + (action.Is("CHECK") ? "ON" : "OFF")};
  }
  if (action.Is("DROP")) {
    DropParts();
  } else if (action.Is("ALTER") && reader_.TakeIf("COLUMN")) {
    AlterColumn();
  } else if (action.Is("ADD")) {
    do {
      const Token next = reader_.Next();
      if (IsAmong(next, kConstraints)) {
        AddConstraint(isChecked);
        continue;
      }
      const Column column = TakeColumn();
      if (column.IsIdentity || !keys_.empty()) FailNotKnown(next);
      // SQLite gives the rows their values; its text gets the mark.
      const std::string name = QuoteName(column.Name) + " ";
      statements_.push_back("ALTER TABLE " + table_.Quoted() + " ADD COLUMN " + Declare(column));
      SetText("replace(sql, " + QuoteText(", " + name) + ", " +
              QuoteText(std::string(kNextItem) + name) + ")");
    } while (reader_.TakeSymbol(","));
  } else {
    FailNotKnown(action);
  }
  reader_.ExpectEnd();
  if (text_ != before) {
    const bool isMixed = !statements_.empty() && statements_.front().starts_with("ALTER");
    if (isMixed || !table_.Prefix.empty()) FailNotKnown(action);
    SetText(QuoteText(text_));
    std::rotate(statements_.begin(), statements_.end() - 3, statements_.end());
  }
  return std::move(statements_);
}

void TableDefinition::SetText(const std::string& sql) {
  statements_.insert(statements_.end(), {"PRAGMA writable_schema = ON",
                                         "UPDATE main.sqlite_schema SET sql = " + sql +
                                             " WHERE type = 'table' AND name = " +
                                             QuoteText(table_.Table) + " COLLATE NOCASE",
                                         "PRAGMA writable_schema = RESET"});
}

std::size_t TableDefinition::EndOfItem(std::size_t begin) const {
  return std::min(text_.find(kNextItem, begin), text_.size() - 1);
}

/// Where a column stands in the text. Raises 207.
Range TableDefinition::FindColumn(const std::string& name) const {
  const std::size_t begin =
      FoldName(text_).find(FoldName(std::string(kItem) + QuoteName(name) + " "));
  if (begin == std::string::npos) throw SqlFailure(message::kInvalidColumn(name), true);
  return {begin + kItem.size(), EndOfItem(begin)};
}

void TableDefinition::AlterColumn() {
  const Column column = TakeColumn();
  const auto [begin, end] = FindColumn(column.Name);
  const std::string old = text_.substr(begin, end - begin);
  if (old.find("AUTOINCREMENT") != std::string::npos) throw NotKnown("IDENTITY");
  const std::size_t more = std::min(old.find(kMore), old.size());
  text_.replace(begin, end - begin, Declare(column) + old.substr(more));
}

void TableDefinition::DropParts() {
  bool isColumn = false;
  do {
    isColumn = reader_.TakeIf("COLUMN") || (isColumn && !reader_.Next().Is("CONSTRAINT"));
    reader_.TakeIf("CONSTRAINT");
    const std::string name = reader_.TakeName();
    if (isColumn) {
      statements_.push_back("ALTER TABLE " + table_.Quoted() + " DROP COLUMN " + QuoteName(name));
    } else {
      DropConstraint(name);
    }
  } while (reader_.TakeSymbol(","));
}

void TableDefinition::DropConstraint(const std::string& name) {
  const std::string folded = FoldName(text_);
  const std::string constraint = FoldName("CONSTRAINT " + QuoteName(name) + " ");
  std::size_t begin = folded.find(std::string(kMore) + constraint);
  if (begin != std::string::npos) {  // a column's
    text_.erase(begin, std::min(text_.find(kMore, begin + 1), EndOfItem(begin)) - begin);
  } else if ((begin = folded.find(std::string(kNextItem) + constraint)) != std::string::npos) {
    const std::size_t size = EndOfItem(begin + 1) - begin;
    const std::string item = text_.substr(begin, size);
    // SQLite has an index of its own for these, which the text must not lose.
    if (item.find(" PRIMARY KEY (") != std::string::npos ||
        item.find(" UNIQUE (") != std::string::npos) {
      throw NotKnown("DROP CONSTRAINT of a key");
    }
    text_.erase(begin, size);
  } else {
    statements_.push_back("DROP INDEX " + QuoteName(table_.Table + "." + name));
  }
}

void TableDefinition::AddConstraint(bool isChecked) {
  const Reader before = reader_;
  const std::string named = TakeConstraintName(table_.Table);
  const std::string name = constraint_;
  if (!named.empty() && FoldName(text_).find(FoldName(named)) != std::string::npos) {
    throw SqlFailure({message::kObjectExists(name), message::kConstraintFailed()});
  }
  if (reader_.Next().Is("DEFAULT")) {
    const std::string value = TakeDefault();
    reader_.Expect("FOR");
    text_.insert(FindColumn(reader_.TakeName()).End, std::string(kMore) + named + value);
    if (reader_.TakeIf("WITH")) reader_.Expect("VALUES");
    return;
  }
  reader_ = before;
  TakeTableConstraint();
  if (!keys_.empty()) {
    const std::string columns = QuoteNames(keys_.back().Columns);
    const std::string index =
        name.empty() ? (keys_.back().IsPrimary ? "PK" : "UQ") + columns : name;
    statements_.push_back("CREATE UNIQUE INDEX " + QuoteName(table_.Table + "." + index) + " ON " +
                          QuoteName(table_.Table) + " (" + columns + ")");
    keys_.clear();
    return;
  }
  text_.insert(text_.size() - 1, std::string(kNextItem) + constraints_.back());
  if (!isChecked) return;
  if (!condition_.empty()) {
    rewriter_.Check("CHECK",
                    "SELECT COUNT(*) FROM " + QuoteName(table_.Table) + " WHERE NOT" + condition_);
  } else {
    rewriter_.Check("FOREIGN KEY",
                    "SELECT COUNT(*) FROM pragma_foreign_key_check(" + QuoteText(table_.Table) +
                        ") WHERE parent = " + QuoteText(parent_) + " COLLATE NOCASE");
  }
}

}  // namespace talu::standin
