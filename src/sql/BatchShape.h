#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "sql/Lexer.h"

namespace talu::sql {

/// The order of the statements in a batch, as far as it decides what the server makes of it. Lines
/// are numbers in the script.
class BatchShape {
 public:
  /// A word and the line that it stands in; line 0 for none.
  struct Spot {
    int Line = 0;
    std::string_view Word;
  };
  /// What makes it uncertain that a statement runs with its batch.
  enum class Condition { None, If, Body };

  /// Follows the next token, of this line; comments are passed over.
  void Take(const Token& token, int line) {
    // Most tokens of a large script stand in the parentheses of rows, where nothing begins.
    const bool bracket = token.Raw == "(" || token.Raw == ")";
    if (depth_ == 0 || naming_.Line != 0 || bracket) Follow(token, line);
  }
  /// Starts the next batch.
  void Clear();

  /// Whether the batch has anything but comments.
  bool HasCode() const { return hasCode_; }
  /// Of the statement being read.
  Condition Conditional() const;
  /// Statements that have to be the first of their batch and are not, by the word behind CREATE.
  const std::vector<Spot>& NotFirst() const { return notFirst_; }
  /// The first statement that returns rows, and the first one behind it whose error is not seen
  /// then; line 0 for none. Counts of changed rows are passed over (source: Microsoft's knowledge
  /// base, 254304, for the provider for ODBC).
  struct Result {
    int Line = 0;
    int UnseenLine = 0;
  };
  const Result& FirstResult() const { return result_; }
  /// The first table, view, procedure or function that is created in the current database.
  const Spot& Object() const { return object_; }
  /// Procedures of the server that make a login or a database.
  const std::vector<Spot>& Makers() const { return makers_; }
  /// Whether the statement being read inserts or changes rows.
  bool InRows() const;
  /// Whether the batch itself runs a text or a procedure.
  bool HasCall() const { return hasCall_; }

 private:
  enum class Word;
  void Follow(const Token& token, int line);
  static Word Known(const Token& token);
  void TakeSymbol(char symbol);
  void TakeWord(Word word, const Token& token);
  void TakeKind(Word word, const Token& token);
  void TakeResultWord(Word word);
  void TakeObjectName(const Token& token);
  void Begin(Word word);
  void Commit();

  bool hasCode_ = false;
  bool hasCall_ = false;
  bool isBody_ = false;
  bool inSchema_ = false;
  bool verbFirst_ = false;
  int line_ = 0;
  int depth_ = 0;
  int cases_ = 0;
  int sinceDrop_ = 0;  // tokens
  Word previous_{};
  // IF and ELSE: whether a statement is to come, and for each open block whether it is conditional.
  bool pending_ = false;
  bool conditional_ = false;
  std::vector<bool> blocks_;
  bool inRights_ = false;
  // The statement that is being read: its word, and whether it returns something.
  Word open_{};
  int openLine_ = 0;
  bool hasRows_ = false;
  bool insertHasSource_ = false;
  bool mayAssign_ = false;
  bool mayOutput_ = false;
  // In the name behind CREATE TABLE: the points so far.
  Spot naming_;
  int points_ = 0;
  bool wantsName_ = false;
  bool isTemporary_ = false;

  std::vector<Spot> notFirst_;
  Result result_;
  Spot object_;
  std::vector<Spot> makers_;
};

}  // namespace talu::sql
