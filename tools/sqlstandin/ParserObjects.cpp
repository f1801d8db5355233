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
  } else if (IsAmong(Next(), "UNIQUE CLUSTERED NONCLUSTERED INDEX")) {
    SkipToBoundary(head);
    statement.What = DataStatement{Verb::CreateIndex};
  } else if (TakeIf("OR")) {
    Expect("ALTER");
    if (!IsAmong(Next(), kModules)) FailAt(Next());
    ParseKept(statement, head, Action::CreateOrAlter);
  } else if (IsAmong(Next(), kKept)) {
    ParseKept(statement, head, Action::Create);
  } else if (IsAmong(Next(), kOthers)) {
    TakeUnknown(statement, head, "CREATE " + UCase(Next().Raw));
  } else {
    FailAt(Next());
  }
}

void Parser::ParseAlter(Statement& statement, const Token& head) {
  if (TakeIf("DATABASE")) {
    ParseAlterDatabase(statement, head);
  } else if (TakeIf("TABLE")) {
    SkipToBoundary(head);
    statement.What = DataStatement{DataStatement::Verb::AlterTable};
  } else if (IsAmong(Next(), kKept) || Next().Is("USER") || Next().Is("INDEX")) {
    ParseKept(statement, head, KeptStatement::Action::Alter);
  } else if (IsAmong(Next(), kOthers)) {
    TakeUnknown(statement, head, "ALTER " + UCase(Next().Raw));
  } else {
    FailAt(Next());
  }
}

void Parser::ParseDrop(Statement& statement, const Token& head) {
  using Verb = DataStatement::Verb;
  if (TakeIf("DATABASE")) {
    CatalogueStatement drop{CatalogueStatement::Action::Drop, {}};
    drop.IfExists = TakeIfExists();
    do {
      drop.Names.push_back(TakeName());
    } while (TakeSymbol(","));
    statement.What = std::move(drop);
  } else if (TakeIf("LOGIN")) {
    statement.What = CatalogueStatement{CatalogueStatement::Action::DropLogin, {TakeName()}};
  } else if (TakeIf("USER")) {
    CatalogueStatement drop{CatalogueStatement::Action::DropUser, {}};
    drop.IfExists = TakeIfExists();
    drop.Names = {TakeName()};
    statement.What = std::move(drop);
  } else if (Next().Is("TABLE") || Next().Is("INDEX")) {
    const bool isTable = Next().Is("TABLE");
    SkipToBoundary(head);
    statement.What = DataStatement{isTable ? Verb::DropTable : Verb::DropIndex};
  } else if (IsAmong(Next(), kKept)) {
    ParseKept(statement, head, KeptStatement::Action::Drop);
  } else if (IsAmong(Next(), kOthers)) {
    TakeUnknown(statement, head, "DROP " + UCase(Next().Raw));
  } else {
    FailAt(Next());
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
  kept.IfExists = action == Action::Drop && TakeIfExists();
  // What follows these words is no name of an object, or one that nothing refers to.
  const bool hasName =
      !IsAmong(kind, "AUTHORIZATION FULLTEXT INDEX PRIMARY SPATIAL STATISTICS XML") &&
      !(isSchema && Next().Is("AUTHORIZATION"));
  if (hasName) {
    do {
      kept.Names.push_back(TakeObjectName());
    } while (action == Action::Drop && TakeSymbol(","));
  }
  if (isModule) {
    if (IsAtEnd()) FailAt(Next());
    while (!IsAtEnd()) Take();
  } else {
    SkipToBoundary(head);
  }
  statement.What = std::move(kept);
}

void Parser::ParseSet(Statement& statement, const Token& head) {
  if (Next().Kind == TokenKind::Variable) {
    const std::string name = Take().Value();
    if (!TakeSymbol("=") || Next().Is("CURSOR")) return TakeUnknown(statement, head, "SET");
    statement.What = AssignVariables{{{name, SkipValue()}}};
    return;
  }
  if (!Next().IsName()) FailAt(Next());
  SetOption option;
  if (TakeIf("NOCOUNT")) {
    option.What = SetOption::Option::NoCount;
  } else if (TakeIf("IDENTITY_INSERT")) {
    option.What = SetOption::Option::IdentityInsert;
    option.Table = TakeObjectName();
  } else if (!IsAmong(Next(), kSetOptions)) {
    throw SqlFailure(message::kUnknownSetOption(Next().Value()), true);
  }
  if (option.What == SetOption::Option::Other || Next().IsSymbol(",")) {
    SkipToBoundary(head);
    option.On = Last().Is("ON");
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
    if (Next().Kind != TokenKind::Variable) {
      if (!Next().IsName()) FailAt(Next());
      return TakeUnknown(statement, head, "DECLARE CURSOR");
    }
    const std::string name = Take().Value();
    TakeIf("AS");
    if (Next().Is("TABLE") || Next().Is("CURSOR")) {
      return TakeUnknown(statement, head, "DECLARE " + UCase(Next().Raw));
    }
    TakeObjectName();
    if (TakeSymbol("(")) {
      while (!IsAtEnd() && !Next().IsSymbol(")")) Take();
      ExpectSymbol(")");
    }
    declared.All.push_back({name, TakeSymbol("=") ? SkipValue() : Range{}});
  } while (TakeSymbol(","));
  statement.What = std::move(declared);
}

void Parser::ParseRaiseError(Statement& statement, const Token& head) {
  RaiseError raise;
  Reader ahead = *this;
  ahead.Take();  // (
  const Token text = ahead.Take();
  const Token comma = ahead.Take();
  const Token severity = ahead.Take();
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
  if (!isBare && Next().IsSymbol("(")) {
    Reader ahead = *this;
    ahead.Take();
    const Token text = ahead.Take();
    call.HasOnlyTexts = text.Kind == TokenKind::String && ahead.Next().IsSymbol(")");
    if (call.HasOnlyTexts) call.Texts.push_back(text.Value());
    SkipToBoundary(head);
    return call;
  }
  if (!isBare && Next().Kind == TokenKind::Variable) {
    Take();  // EXEC @result = name
    if (!TakeSymbol("=")) call.HasOnlyTexts = false;
  }
  if (call.HasOnlyTexts) call.Name = isBare ? head.Value() : TakeObjectName();
  while (TakeSymbol(".")) call.Name = Next().IsSymbol(".") ? std::string() : TakeName();
  // Its arguments: N'text', @name = N'text'.
  const auto isText = [this] {
    return Next().Kind == TokenKind::String || Next().Kind == TokenKind::Name ||
           (Next().Kind == TokenKind::Word && !sql::IsReserved(Next().Raw));
  };
  while (isText() || Next().Kind == TokenKind::Variable) {
    if (Next().Kind == TokenKind::Variable) {
      Take();
      if (!TakeSymbol("=")) call.HasOnlyTexts = false;
    }
    if (!isText()) break;
    call.Texts.push_back(Take().Value());
    if (!TakeSymbol(",")) break;
  }
  const std::size_t end = Last().At;
  SkipToBoundary(head);
  if (Last().At != end) call.HasOnlyTexts = false;
  return call;
}

}  // namespace talu::standin
