#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "Finding.h"
#include "sql/BatchShape.h"
#include "sql/Lexer.h"

namespace talu::packcheck {

/// A statement that names a database, or creates or drops a login.
struct SqlStatement {
  enum class Kind { Create, Alter, Drop, Use };

  Kind Verb = Kind::Use;
  bool Login = false;
  /// The keywords as written; a line end among them counts as CR LF.
  std::string Spelled;
  /// The name as written, with its brackets; empty when it is not a name.
  std::string Name;
  packcheck::Place Place;
  /// Of a CREATE: what makes it uncertain that it runs with its batch.
  sql::BatchShape::Condition When = sql::BatchShape::Condition::None;
};

/// A text and its place.
struct SqlText {
  std::string Text;
  packcheck::Place Place;
};

/// What the lines of a batch contain.
struct SqlFacts {
  std::vector<SqlStatement> Statements;
  /// The texts after FILENAME.
  std::vector<SqlText> FileNames;
  /// The texts after PASSWORD in a statement about a login, and in the place of one.
  std::vector<SqlText> Passwords;
  /// $(Name) in the code, a name or a file's path.
  std::vector<SqlText> Variables;
};

/// Reads T-SQL line by line and collects `SqlFacts`.
class SqlFollower {
 public:
  /// Processes the next line of `file`.
  void TakeLine(const std::string& file, int number, std::string_view line);
  /// Starts afresh, as for a new file. The facts stay.
  void Restart();

  /// What the next line continues (String, Name, Comment; End for code), and the line number where
  /// that began.
  sql::TokenKind Inside() const { return open_.Kind; }
  int OpenedLine() const { return openedLine_; }
  /// The number of open parentheses.
  int Depth() const { return depth_; }

  /// Begins the next batch.
  void ClearBatch();

  SqlFacts Facts;
  sql::BatchShape Shape;

 private:
  enum class Waiting { Nothing, Name, FileName, Password };

  void Take(const sql::Token& token);
  void TakeSymbol(char symbol);
  void TakeWord(const sql::Token& word);
  void TakeKeyword(const sql::Token& word);
  void TakeText(std::string_view text);
  void TakeName(const sql::Token& name);
  void NoteVariable(const sql::Token& token);
  Place Here() const { return {*file_, number_, std::string(line_)}; }

  const std::string* file_ = nullptr;
  int number_ = 0;
  std::string_view line_;
  sql::Unclosed open_;
  int openedLine_ = 0;
  int depth_ = 0;
  Waiting waiting_ = Waiting::Nothing;
  // The last word was CREATE, ALTER or DROP: as written, and its place.
  std::string verb_;
  std::size_t verbAt_ = 0;
  int verbLine_ = 0;
  bool aboutLogin_ = false;
  // Which argument of sp_addlogin is being read, from 1; 0 for none.
  int argument_ = 0;
  bool hasVariables_ = false;
  SqlStatement statement_;
};

/// A name without its brackets or quotes, upper-cased, for comparison.
std::string BareName(std::string_view name);

}  // namespace talu::packcheck
