#include "platform/simulated/StatementReader.h"

#include <utility>

#include "runtime/TextFunctions.h"
#include "sql/Names.h"

namespace talu {

using sql::Token;
using sql::TokenKind;

std::string ObjectName::Last() const {
  return Parts.empty() ? "" : UCase(Parts.back());
}

std::string ObjectName::Shown() const {
  std::string shown;
  for (const std::string& part : Parts) {
    shown.append(&part == Parts.data() ? "" : ".").append(part);
  }
  return shown;
}

Token StatementReader::Take() {
  return std::exchange(now_, lexer_.Next());
}

bool StatementReader::Skip(std::string_view keyword) {
  if (!now_.Is(keyword)) return false;
  Take();
  return true;
}

bool StatementReader::SkipSymbol(std::string_view symbol) {
  if (!now_.IsSymbol(symbol)) return false;
  Take();
  return true;
}

void StatementReader::SkipParentheses() {
  if (!now_.IsSymbol("(")) return;
  int depth = 0;
  do {
    const Token token = Take();
    if (token.IsSymbol("(")) ++depth;
    if (token.IsSymbol(")")) --depth;
  } while (depth > 0 && now_.Kind != TokenKind::End);
}

ObjectName StatementReader::TakeName() {
  ObjectName name;
  name.At = now_.At;
  if (!now_.IsName() || (now_.Kind == TokenKind::Word && sql::IsReserved(now_.Raw))) return name;
  name.Parts.push_back(Take().Value());
  while (SkipSymbol(".")) name.Parts.push_back(now_.IsName() ? Take().Value() : "");
  return name;
}

std::optional<std::string> StatementReader::Argument::Text() const {
  if (Value.Kind == TokenKind::String || Value.IsName()) return Value.Value();
  return {};
}

std::vector<StatementReader::Argument> StatementReader::TakeArguments() {
  std::vector<Argument> arguments;
  do {
    Argument argument;
    argument.Value = now_;
    if (now_.Kind == TokenKind::Variable) {
      Take();
      if (SkipSymbol("=")) {
        argument.Name = UCase(argument.Value.Raw);
        argument.Value = Take();
      }
    } else if (now_.Kind == TokenKind::Symbol || now_.Kind == TokenKind::End) {
      break;
    } else {
      Take();
    }
    arguments.push_back(argument);
  } while (SkipSymbol(","));
  return arguments;
}

}  // namespace talu
