// The statements about objects, options, variables and procedures.
#include "Parser.h"
#include "runtime/TextFunctions.h"
#include "sql/Names.h"

namespace talu::standin {
namespace {

/// What can be created, altered and dropped; all but what has a reader of its own below.
constexpr std::string_view kKept =
    "AUTHORIZATION DEFAULT FULLTEXT FUNCTION PRIMARY PROC PROCEDURE ROLE RULE SCHEMA SEQUENCE "
    "SPATIAL STATISTICS SYNONYM TRIGGER TYPE VIEW XML";
constexpr std::string_view kOthers =
    "AGGREGATE APPLICATION ASSEMBLY ASYMMETRIC AVAILABILITY BROKER CERTIFICATE COLUMN COLUMNSTORE "
    "CONTRACT CREDENTIAL CRYPTOGRAPHIC ENDPOINT EVENT EXTERNAL INDEX LOGIN MASTER MESSAGE "
    "PARTITION QUEUE REMOTE RESOURCE ROUTE SEARCH SECURITY SENSITIVITY SERVER SERVICE SIGNATURE "
    "SYMMETRIC WORKLOAD";
/// What is first in its batch; the batch is its text.
constexpr std::string_view kModules = "PROC PROCEDURE FUNCTION TRIGGER VIEW RULE DEFAULT";

constexpr std::string_view kSetOptions =
    "ANSI_DEFAULTS ANSI_NULLS ANSI_NULL_DFLT_OFF ANSI_NULL_DFLT_ON ANSI_PADDING ANSI_WARNINGS "
    "ARITHABORT ARITHIGNORE CONCAT_NULL_YIELDS_NULL CONTEXT_INFO CURSOR_CLOSE_ON_COMMIT DATEFIRST "
    "DATEFORMAT DEADLOCK_PRIORITY FIPS_FLAGGER FMTONLY FORCEPLAN IDENTITY_INSERT "
    "IMPLICIT_TRANSACTIONS LANGUAGE LOCK_TIMEOUT NOCOUNT NOEXEC NUMERIC_ROUNDABORT OFFSETS "
    "PARSEONLY QUERY_GOVERNOR_COST_LIMIT QUOTED_IDENTIFIER REMOTE_PROC_TRANSACTIONS ROWCOUNT "
    "SHOWPLAN_ALL SHOWPLAN_TEXT SHOWPLAN_XML STATISTICS TEXTSIZE TRANSACTION XACT_ABORT";

}  // namespace

void Parser::ParseCreate(Statement& statement, const Token& head) {
  using Verb = DataStatement::Verb;
  using Action = KeptStatement::Action;
  if (TakeIf("DATABASE")) {
    ParseCreateDatabase(statement, head);
  } else if (TakeIf("LOGIN")) {
    statement.What = ParseCreateLogin();
  } else if (TakeIf("USER")) {
    statement.What = ParseCreateUser();
  } else if (TakeIf("TABLE")) {
    SkipToBoundary(head);
    statement.What = DataStatement{Verb::CreateTable};
  } else if (IsAmong(next_, "UNIQUE CLUSTERED NONCLUSTERED INDEX")) {
    SkipToBoundary(head);
    statement.What = DataStatement{Verb::CreateIndex};
  } else if (TakeIf("OR")) {
    Expect("ALTER");
    if (!IsAmong(next_, kModules)) FailAt(next_);
    ParseKept(statement, head, Action::CreateOrAlter);
  } else if (IsAmong(next_, kKept)) {
    ParseKept(statement, head, Action::Create);
  } else if (IsAmong(next_, kOthers)) {
    TakeUnknown(statement, head, "CREATE " + UCase(next_.Raw));
  } else {
    FailAt(next_);
  }
}

void Parser::ParseAlter(Statement& statement, const Token& head) {
  if (TakeIf("DATABASE")) {
    ParseAlterDatabase(statement, head);
  } else if (TakeIf("TABLE")) {
    SkipToBoundary(head);
    statement.What = DataStatement{DataStatement::Verb::AlterTable};
  } else if (IsAmong(next_, kKept) || next_.Is("USER") || next_.Is("INDEX")) {
    ParseKept(statement, head, KeptStatement::Action::Alter);
  } else if (IsAmong(next_, kOthers)) {
    TakeUnknown(statement, head, "ALTER " + UCase(next_.Raw));
  } else {
    FailAt(next_);
  }
}

void Parser::ParseDrop(Statement& statement, const Token& head) {
  using Verb = DataStatement::Verb;
  if (TakeIf("DATABASE")) {
    statement.What = ParseDropDatabase();
  } else if (TakeIf("LOGIN")) {
    statement.What = DropLogin{TakeName()};
  } else if (TakeIf("USER")) {
    DropUser drop;
    if (TakeIf("IF")) {
      Expect("EXISTS");
      drop.IfExists = true;
    }
    drop.Name = TakeName();
    statement.What = drop;
  } else if (next_.Is("TABLE") || next_.Is("INDEX")) {
    const bool isTable = next_.Is("TABLE");
    SkipToBoundary(head);
    statement.What = DataStatement{isTable ? Verb::DropTable : Verb::DropIndex};
  } else if (IsAmong(next_, kKept)) {
    ParseKept(statement, head, KeptStatement::Action::Drop);
  } else if (IsAmong(next_, kOthers)) {
    TakeUnknown(statement, head, "DROP " + UCase(next_.Raw));
  } else {
    FailAt(next_);
  }
}

/// Behind CREATE, ALTER or DROP.
void Parser::ParseKept(Statement& statement, const Token& head, KeptStatement::Action action) {
  using Action = KeptStatement::Action;
  const Token kind = Take();
  if (action == Action::Alter && kind.Is("SCHEMA")) {
    return TakeUnknown(statement, head, "ALTER SCHEMA");
  }
  KeptStatement kept{action, UCase(kind.Raw), {}, false};
  if (kept.Kind == "PROC") kept.Kind = "PROCEDURE";
  const bool isModule = action != Action::Drop && IsAmong(kind, kModules);
  const bool isSchema = action == Action::Create && kind.Is("SCHEMA");
  if ((isModule || isSchema) && (!isFirst_ || depth_ > 1)) {
    if (depth_ > 1) FailAt(kind);
    SqlFailure failure(message::kNotFirst(kind.Is("PROC") || kind.Is("PROCEDURE")
                                              ? "CREATE/ALTER PROCEDURE"
                                              : UCase(head.Raw) + " " + kept.Kind),
                       true);
    failure.At = head.At;
    throw failure;
  }
  if (action == Action::Drop && TakeIf("IF")) {
    Expect("EXISTS");
    kept.IfExists = true;
  }
  // What follows these words is no name of an object, or one that nothing refers to.
  const bool hasName =
      !IsAmong(kind, "AUTHORIZATION FULLTEXT INDEX PRIMARY SPATIAL STATISTICS XML") &&
      !(isSchema && next_.Is("AUTHORIZATION"));
  if (hasName) {
    do {
      kept.Names.push_back(TakeObjectName());
    } while (action == Action::Drop && TakeSymbol(","));
  }
  if (isModule) {
    if (next_.Kind == TokenKind::End) FailAt(next_);
    while (next_.Kind != TokenKind::End) Take();
  } else {
    SkipToBoundary(head);
  }
  statement.What = std::move(kept);
}

void Parser::ParseSet(Statement& statement, const Token& head) {
  if (next_.Kind == TokenKind::Variable) {
    const std::string name = Take().Value();
    if (!TakeSymbol("=") || next_.Is("CURSOR")) return TakeUnknown(statement, head, "SET");
    statement.What = AssignVariables{{{name, SkipValue()}}};
    return;
  }
  if (!next_.IsName()) FailAt(next_);
  SetOption option;
  if (TakeIf("NOCOUNT")) {
    option.What = SetOption::Option::NoCount;
  } else if (TakeIf("IDENTITY_INSERT")) {
    option.What = SetOption::Option::IdentityInsert;
    option.Table = TakeObjectName();
  } else if (!IsAmong(next_, kSetOptions)) {
    throw SqlFailure(message::kUnknownSetOption(next_.Value()), true);
  }
  if (option.What == SetOption::Option::Other || next_.IsSymbol(",")) {
    SkipToBoundary(head);
    option.On = last_.Is("ON");
  } else if (TakeIf("ON")) {
    option.On = true;
  } else {
    Expect("OFF");
  }
  statement.What = option;
}

void Parser::ParseDeclare(Statement& statement, const Token& head) {
  AssignVariables declared;
  do {
    if (next_.Kind != TokenKind::Variable) {
      if (!next_.IsName()) FailAt(next_);
      return TakeUnknown(statement, head, "DECLARE CURSOR");
    }
    const std::string name = Take().Value();
    TakeIf("AS");
    if (next_.Is("TABLE") || next_.Is("CURSOR")) {
      return TakeUnknown(statement, head, "DECLARE " + UCase(next_.Raw));
    }
    TakeObjectName();
    if (TakeSymbol("(")) {
      while (next_.Kind != TokenKind::End && !next_.IsSymbol(")")) Take();
      ExpectSymbol(")");
    }
    declared.All.push_back({name, TakeSymbol("=") ? SkipValue() : Range{}});
  } while (TakeSymbol(","));
  statement.What = std::move(declared);
}

void Parser::ParseRaiseError(Statement& statement, const Token& head) {
  RaiseError raise;
  Lexer ahead = lexer_;
  const Token text = ahead.Next();
  const Token comma = ahead.Next();
  const Token severity = ahead.Next();
  SkipToBoundary(head);
  if (text.Kind != TokenKind::String || !comma.IsSymbol(",") ||
      severity.Kind != TokenKind::Number || severity.Raw.size() > 2 ||
      (text.Raw.find('%') != std::string_view::npos && severity.Raw.size() > 1)) {
    statement.What = UnknownStatement{"RAISERROR"};
    return;
  }
  raise.Text = text.Value();
  for (const char digit : severity.Raw) raise.Severity = raise.Severity * 10 + (digit - '0');
  statement.What = std::move(raise);
}

/// Behind EXEC, or behind the name itself.
CallProcedure Parser::ParseCall(const Token& head) {
  CallProcedure call;
  const bool isBare = !IsAmong(head, "EXEC EXECUTE");
  if (!isBare && next_.IsSymbol("(")) {
    Lexer ahead = lexer_;
    const Token text = ahead.Next();
    call.HasOnlyTexts = text.Kind == TokenKind::String && ahead.Next().IsSymbol(")");
    if (call.HasOnlyTexts) call.Texts.push_back(text.Value());
    SkipToBoundary(head);
    return call;
  }
  if (!isBare && next_.Kind == TokenKind::Variable) {
    Take();  // EXEC @result = name
    if (!TakeSymbol("=")) call.HasOnlyTexts = false;
  }
  if (call.HasOnlyTexts) call.Name = isBare ? head.Value() : TakeObjectName();
  while (TakeSymbol(".")) call.Name = next_.IsSymbol(".") ? std::string() : TakeName();
  // Its arguments: N'text', @name = N'text'.
  const auto isText = [this] {
    return next_.Kind == TokenKind::String || next_.Kind == TokenKind::Name ||
           (next_.Kind == TokenKind::Word && !sql::IsReserved(next_.Raw));
  };
  while (isText() || next_.Kind == TokenKind::Variable) {
    if (next_.Kind == TokenKind::Variable) {
      Take();
      if (!TakeSymbol("=")) call.HasOnlyTexts = false;
    }
    if (!isText()) break;
    call.Texts.push_back(Take().Value());
    if (!TakeSymbol(",")) break;
  }
  const std::size_t end = last_.At;
  SkipToBoundary(head);
  if (last_.At != end) call.HasOnlyTexts = false;
  return call;
}

}  // namespace talu::standin
