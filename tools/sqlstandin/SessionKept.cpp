// What is kept as text, what is taken note of, and procedures.
#include <algorithm>
#include <tuple>

#include "Session.h"
#include "Text.h"
#include "runtime/TextFunctions.h"

namespace talu::standin {
namespace {

/// Procedures of the server whose effect nothing here depends on.
constexpr std::string_view kKeptProcedures =
    "SP_ADDEXTENDEDPROPERTY SP_ADDMESSAGE SP_ADDROLE SP_ADDROLEMEMBER SP_ADDSRVROLEMEMBER "
    "SP_AUTOSTATS SP_BINDEFAULT SP_BINDRULE SP_CHANGEDBOWNER SP_CONFIGURE SP_CREATESTATS "
    "SP_DBCMPTLEVEL SP_DBOPTION SP_DB_VARDECIMAL_STORAGE_FORMAT SP_DEFAULTDB "
    "SP_DROPEXTENDEDPROPERTY SP_DROPROLE SP_DROPROLEMEMBER "
    "SP_FULLTEXT_CATALOG SP_FULLTEXT_COLUMN SP_FULLTEXT_DATABASE SP_FULLTEXT_SERVICE "
    "SP_FULLTEXT_TABLE SP_INDEXOPTION SP_PROCOPTION SP_RECOMPILE SP_REFRESHVIEW "
    "SP_SETTRIGGERORDER SP_TABLEOPTION SP_UNBINDEFAULT SP_UNBINDRULE SP_UPDATEEXTENDEDPROPERTY "
    "SP_UPDATESTATS";

/// In which part of a statement the name of what it changes stands, in bytes.
constexpr std::size_t kFirstName = 1000;

}  // namespace

/// The words that say what a statement is: "INSERT", "CREATE TABLE".
std::string Session::HeadOf(const Statement& statement) const {
  Reader reader(batch_, statement.Text);
  const Token first = reader.Take();
  if (std::holds_alternative<CallProcedure>(statement.What)) return "EXEC";
  std::string head = UCase(first.Raw);
  if (!IsAmong(first, "CREATE ALTER DROP TRUNCATE")) return head;
  while (IsAmong(reader.Next(), "UNIQUE CLUSTERED NONCLUSTERED OR ALTER")) reader.Take();
  return head + " " + UCase(reader.Next().Raw);
}

/// Goes on as if the statement had been carried out, unless that is not allowed. What it names is
/// uncertain from then on, so that nothing that depends on it is refused.
bool Session::Note(const std::string& construct, const Statement& statement) {
  const std::size_t line = LineOf(statement.Text.Begin);
  if (isStrict_) {
    return Report(SqlFailure(message::kNotKnown(construct, line), true), statement.Text.Begin);
  }
  if (outcome_.Noted.empty() && !outcome_.Error) outcome_.Line = line;
  if (std::ranges::find(outcome_.Noted, construct) == outcome_.Noted.end()) {
    outcome_.Noted.push_back(construct);
  }
  const std::string_view text =
      batch_.substr(statement.Text.Begin, statement.Text.End - statement.Text.Begin);
  using Change = KeptObjects::Change;
  Reader reader(text);
  const Token first = reader.Take();
  const bool isShape = IsAmong(first, "CREATE ALTER");
  const bool isRows = IsAmong(first, "INSERT UPDATE DELETE MERGE TRUNCATE BULK");
  const bool isQuery = IsAmong(first, "SELECT PRINT");
  const KeptObjects kept(Current());
  bool isInto = false;  // SELECT … INTO
  while (!reader.IsAtEnd()) {
    const Token token = reader.Take();
    if (token.Kind == TokenKind::Variable) variables_[FoldName(token.Raw)].reset();
    isInto |= token.Is("INTO");
  }
  const Change change = isShape ? Change::Shape : isRows ? Change::Rows : Change::Any;
  if (isQuery && !isInto) {
    // It changes nothing.
  } else if (isShape || isRows) {
    const std::vector<std::string> names = NamesIn(text.substr(0, kFirstName), false);
    if (!names.empty()) kept.Note(names.front(), change);
  } else {
    for (const std::string& name : NamesIn(text, true)) kept.Note(name, change);
  }
  lastError_ = 0;
  Done();
  return true;
}

/// Whether a statement may have failed only because of what was noted before, or is only kept.
bool Session::IsUncertain(const SqlFailure& failure, const Statement& statement) {
  const bool isData = std::holds_alternative<DataStatement>(statement.What) ||
                      std::holds_alternative<IfStatement>(statement.What) ||
                      std::holds_alternative<AssignVariables>(statement.What) ||
                      std::holds_alternative<PrintText>(statement.What);
  const auto* kept = std::get_if<KeptStatement>(&statement.What);
  if (!isData && kept == nullptr && !std::holds_alternative<CallProcedure>(statement.What)) {
    return false;
  }
  const std::int32_t number = failure.Messages.front().Number;
  if (number == message::kLockTimeout.Number || number == message::kOutOfMemory.Number ||
      number == message::kDatabaseInaccessible.Number || number == message::kTooDeep.Number) {
    return false;
  }
  if (number == message::kInvalidColumn.Number && isApproximate_) return true;
  const KeptObjects objects(Current());
  if (number == message::kConflict.Number || number == message::kDuplicateKey.Number) {
    return objects.HasNotes();
  }
  if (kept != nullptr) return objects.IsUncertain(kept->Names, false);
  const Range range = std::holds_alternative<IfStatement>(statement.What)
                          ? std::get<IfStatement>(statement.What).Condition
                          : statement.Text;
  const bool isDefinition = IsAmong(Reader(batch_, range).Next(), "CREATE ALTER DROP TRUNCATE") &&
                            HeadOf(statement) != "CREATE INDEX";  // views have indexes, too
  return objects.IsUncertain(NamesIn(batch_.substr(range.Begin, range.End - range.Begin), false),
                             !isDefinition);
}

void Session::Do(const UnknownStatement& statement) {
  goesOn_ = Note(statement.Construct, *statement_);
}

void Session::Do(const KeptStatement& statement) {
  const Range range = statement_->Text;
  for (const std::string& name : statement.Names) KeepNamed(statement, name);
  if (statement.Names.empty()) {
    outcome_.Keeps = true;
    KeptObjects(Current()).Add(statement.Kind, "",
                               batch_.substr(range.Begin, range.End - range.Begin));
  }
  schemas_.reset();
  Done();
}

void Session::KeepNamed(const KeptStatement& statement, const std::string& name) {
  using Action = KeptStatement::Action;
  const std::string& kind = statement.Kind;
  const std::string_view text =
      batch_.substr(statement_->Text.Begin, statement_->Text.End - statement_->Text.Begin);
  const KeptObjects kept(Current());
  const bool isView = kind == "VIEW";
  const bool isApart = kind == "ROLE" || kind == "SCHEMA" || kind == "USER";
  const bool isThere = kept.Has(kind, name);
  if (statement.What == Action::Drop) {
    if (!isThere && statement.IfExists) return;
    if (!isThere && isApart)
      throw SqlFailure(message::kNoSuchPrincipal("drop", FoldName(kind), name));
    if (!isThere && kind == "TYPE") throw SqlFailure(message::kNoSuchType(name));
    if (!isThere) throw SqlFailure(message::kCannotDrop(FoldName(kind), name));
  } else if (statement.What == Action::Create) {
    if (kept.IsTaken(kind, name)) {
      if (kind == "TYPE") throw SqlFailure(message::kTypeExists(name));
      if (kind == "ROLE") throw SqlFailure(message::kUserExists(name));
      throw SqlFailure(message::kObjectExists(name));
    }
    NeedSchemaOf(name);
  } else if (!isThere && !isApart && statement.What == Action::Alter) {
    throw SqlFailure(message::kInvalidObject(name), true);
  }
  if (isThere) {
    kept.Remove(kind, name);
    if (isView) Current().Execute("DROP VIEW IF EXISTS " + QuoteName(name));
  }
  if (statement.What == Action::Drop || (isView && MakeView(name))) return;
  outcome_.Keeps = true;
  kept.Add(kind, name, text);
}

/// Whether SQLite takes the view. Raises what the real server would say of its query.
bool Session::MakeView(const std::string& name) {
  SqliteDatabase& database = Current();
  const std::string drop = "DROP VIEW IF EXISTS " + QuoteName(name);
  try {
    database.DetachAll();
    RunSql(Rewriter(batch_, *this).RewriteView(statement_->Text), true);
    const SqliteStatement query(database, "SELECT * FROM main." + QuoteName(name), "SELECT");
    return true;
  } catch (const NotKnown&) {
    database.Execute(drop);
    return false;
  } catch (const SqlFailure& failure) {
    database.Execute(drop);
    const Range range = statement_->Text;
    if (failure.Messages.front().Number != message::kInvalidObject.Number ||
        KeptObjects(database).IsUncertain(
            NamesIn(batch_.substr(range.Begin, range.End - range.Begin), false), true)) {
      return false;
    }
    throw;
  }
}

void Session::NeedSchemaOf(const std::string& name) {
  const std::size_t dot = name.find('.');
  if (dot == std::string::npos || IsSchema(name.substr(0, dot))) return;
  if (KeptObjects(Current()).IsUncertain({name.substr(0, dot)}, false)) return;
  throw SqlFailure(message::kNoSuchSchema(name.substr(0, dot)), true);
}

void Session::Do(const CallProcedure& statement) {
  std::string name = statement.Name;
  if (FoldName(name).starts_with("sys.")) name.erase(0, 4);
  if (name.empty() || SameWord(name, "sp_executesql")) {
    if (!statement.HasOnlyTexts || statement.Texts.size() != 1) throw NotKnown("a computed text");
    const std::string text = statement.Texts.front();
    const auto outer = std::tuple(batch_, countedTo_, line_, statement_);
    const std::string database = facts_.Current.Name;
    RunText(text);
    std::tie(batch_, countedTo_, line_, statement_) = outer;
    if (facts_.Current.Name != database) SwitchTo(database);
    goesOn_ = true;
  } else if (!CallSystemProcedure(statement, name)) {
    const KeptObjects kept(Current());
    if (!kept.Has("PROCEDURE", name)) throw SqlFailure(message::kNoSuchProcedure(name));
    for (const std::string& each : NamesIn(kept.TextOf(name), true)) {
      if (!isStrict_) kept.Note(each, KeptObjects::Change::Any);
    }
    throw NotKnown("a procedure that is only kept");
  }
  Done();
}

bool Session::CallSystemProcedure(const CallProcedure& statement, const std::string& name) {
  const std::string word = FoldName(name);
  const auto& texts = statement.Texts;
  const auto text = [&](std::size_t at) { return at < texts.size() ? texts[at] : std::string(); };
  const bool isClear = statement.HasOnlyTexts && !texts.empty();
  if (isClear && word == "sp_addlogin") {
    catalogue_.CreateLogin(text(0), text(1));
  } else if (isClear && word == "sp_grantlogin") {
    catalogue_.CreateLogin(text(0), {});
  } else if (isClear && (word == "sp_droplogin" || word == "sp_revokelogin")) {
    catalogue_.DropLogin(text(0));
  } else if (isClear && (word == "sp_adduser" || word == "sp_grantdbaccess")) {
    catalogue_.CreateUser(facts_.Current.Id, text(texts.size() > 1 ? 1 : 0), text(0));
  } else if (isClear && (word == "sp_dropuser" || word == "sp_revokedbaccess")) {
    catalogue_.DropUser(facts_.Current.Id, text(0));
  } else if (isClear && word == "sp_addtype") {
    KeptObjects(Current()).Add("TYPE", text(0), text(1));
    outcome_.Keeps = true;
  } else if (IsAmong(Reader(name).Next(), kKeptProcedures)) {
    const Range range = statement_->Text;
    KeptObjects(Current()).Add("EXEC", "", batch_.substr(range.Begin, range.End - range.Begin));
    outcome_.Keeps = true;
  } else if (word.starts_with("sp_") || word.starts_with("xp_")) {
    if (KeptObjects(Current()).Has("PROCEDURE", name)) return false;
    throw NotKnown(word);
  } else {
    return false;
  }
  return true;
}

}  // namespace talu::standin
