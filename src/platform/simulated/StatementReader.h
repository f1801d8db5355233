#pragma once

#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "sql/Lexer.h"

namespace talu {

/// A name of up to four parts: server, database, schema and what it names.
struct ObjectName {
  /// Without brackets; one that is left out between two points is empty. None: it is no name.
  std::vector<std::string> Parts;
  std::size_t At = 0;

  /// The last part, upper-cased.
  std::string Last() const;
  /// As the server shows it: without brackets.
  std::string Shown() const;
};

/// Reads the tokens of a statement within a batch.
class StatementReader {
 public:
  /// `at`: of the first token, in bytes.
  StatementReader(std::string_view batch, std::size_t at)
      : lexer_(batch, at, batch.size()), now_(lexer_.Next()) {}

  const sql::Token& Now() const { return now_; }
  sql::Token Take();
  /// Takes the keyword or the symbol, if it is next.
  bool Skip(std::string_view keyword);
  bool SkipSymbol(std::string_view symbol);
  /// Takes what stands in parentheses, if one is next.
  void SkipParentheses();
  /// Takes a name, or nothing: a keyword is none.
  ObjectName TakeName();

  /// An argument of a call; its name, upper-cased, is empty where it goes by its position.
  struct Argument {
    std::string Name;
    sql::Token Value;

    /// Nothing when it is a variable.
    std::optional<std::string> Text() const;
  };
  std::vector<Argument> TakeArguments();

 private:
  sql::Lexer lexer_;
  sql::Token now_;
};

}  // namespace talu
