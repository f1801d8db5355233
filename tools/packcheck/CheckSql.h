#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "Finding.h"
#include "sql/Lexer.h"

namespace talu::packcheck {

/// A statement that names a database or creates a login.
struct SqlStatement {
  enum class Kind { Create, Alter, Drop, Use };

  Kind Verb = Kind::Use;
  bool Login = false;
  /// The keywords as they are written; a line end among them counts as CR LF.
  std::string Spelled;
  /// The name as it is written, with its brackets; empty when it is none.
  std::string Name;
  packcheck::Place Place;
};

/// A text, with where it stands.
struct SqlText {
  std::string Text;
  packcheck::Place Place;
};

/// What was found in the lines of a batch.
struct SqlFacts {
  std::vector<SqlStatement> Statements;
  /// The texts behind FILENAME.
  std::vector<SqlText> FileNames;
  /// The texts behind PASSWORD in a statement about a login.
  std::vector<SqlText> Passwords;
  bool CommentCreatesDatabase = false;
  bool CommentCreatesLogin = false;

  void Clear() { *this = {}; }
};

/// Follows T-SQL from line to line and picks out what `SqlFacts` holds.
class SqlFollower {
 public:
  /// Takes the next line of `file`.
  void TakeLine(const std::string& file, int number, std::string_view line);
  /// As at the beginning of a file. The facts stay.
  void Restart();

  /// What the next line begins in (String, Name, Comment; End for code), and the number of the line
  /// in which that began.
  sql::TokenKind Inside() const { return open_.Kind; }
  int OpenedLine() const { return openedLine_; }
  /// Parentheses that are open.
  int Depth() const { return depth_; }

  SqlFacts Facts;

 private:
  enum class Waiting { Nothing, Name, FileName, Password };

  void Take(const sql::Token& token);
  void TakeSymbol(char symbol);
  void TakeWord(const sql::Token& word);
  void TakeKeyword(const sql::Token& word);
  void TakeText(std::string_view text);
  void TakeName(const sql::Token& name);
  void NoteComment(std::string_view comment);
  Place Here() const { return {*file_, number_, std::string(line_)}; }

  const std::string* file_ = nullptr;
  int number_ = 0;
  std::string_view line_;
  sql::Unclosed open_;
  int openedLine_ = 0;
  int depth_ = 0;
  Waiting waiting_ = Waiting::Nothing;
  // CREATE, ALTER or DROP was the last word: as it is written, and where.
  std::string verb_;
  std::size_t verbAt_ = 0;
  int verbLine_ = 0;
  bool aboutLogin_ = false;
  SqlStatement statement_;
};

/// A name without its brackets or quotes, upper-cased, for comparing.
std::string BareName(std::string_view name);

}  // namespace talu::packcheck
