// The statements about databases and logins, read word by word.
#include "Parser.h"
#include "runtime/TextFunctions.h"

namespace talu::standin {
namespace {

constexpr std::string_view kDatabaseOptions =
    "ACCELERATED_DATABASE_RECOVERY ALLOW_SNAPSHOT_ISOLATION ANSI_NULLS ANSI_NULL_DEFAULT "
    "ANSI_PADDING ANSI_WARNINGS ARITHABORT AUTO_CLOSE AUTO_CREATE_STATISTICS AUTO_SHRINK "
    "AUTO_UPDATE_STATISTICS AUTO_UPDATE_STATISTICS_ASYNC CHANGE_TRACKING COMPATIBILITY_LEVEL "
    "CONCAT_NULL_YIELDS_NULL CONTAINMENT CURSOR_CLOSE_ON_COMMIT CURSOR_DEFAULT "
    "DATE_CORRELATION_OPTIMIZATION DB_CHAINING DEFAULT_FULLTEXT_LANGUAGE DEFAULT_LANGUAGE "
    "DELAYED_DURABILITY DISABLE_BROKER EMERGENCY ENABLE_BROKER ENCRYPTION "
    "ERROR_BROKER_CONVERSATIONS FILESTREAM HADR HONOR_BROKER_PRIORITY "
    "MEMORY_OPTIMIZED_ELEVATE_TO_SNAPSHOT MIXED_PAGE_ALLOCATION MULTI_USER NESTED_TRIGGERS "
    "NEW_BROKER NUMERIC_ROUNDABORT PAGE_VERIFY PARAMETERIZATION PARTNER QUERY_STORE "
    "QUOTED_IDENTIFIER READ_COMMITTED_SNAPSHOT READ_ONLY READ_WRITE RECOVERY RECURSIVE_TRIGGERS "
    "RESTRICTED_USER SUPPLEMENTAL_LOGGING TARGET_RECOVERY_TIME TEMPORAL_HISTORY_RETENTION "
    "TORN_PAGE_DETECTION TRANSFORM_NOISE_WORDS TRUSTWORTHY TWO_DIGIT_YEAR_CUTOFF WITNESS";
constexpr std::string_view kBackupOptions =
    "BLOCKSIZE BUFFERCOUNT CHECKSUM COMPRESSION CONTINUE_AFTER_ERROR COPY_ONLY DESCRIPTION "
    "EXPIREDATE MAXTRANSFERSIZE MEDIADESCRIPTION MEDIANAME MEDIAPASSWORD NAME NOFORMAT NOINIT "
    "NOREWIND NOSKIP NOUNLOAD NO_CHECKSUM NO_COMPRESSION PASSWORD RESTART RETAINDAYS REWIND SKIP "
    "STOP_ON_ERROR UNLOAD";

}  // namespace

void Parser::ParseCreateDatabase(Statement& statement, const Token& head) {
  if (IsAmong(next_, "AUDIT ENCRYPTION SCOPED")) {
    return TakeUnknown(statement, head, "CREATE DATABASE " + UCase(next_.Raw));
  }
  CreateDatabase create;
  create.Name = TakeName();
  if (TakeIf("CONTAINMENT")) {
    ExpectSymbol("=");
    TakeName();
  }
  if (TakeIf("ON")) {
    TakeIf("PRIMARY");
    create.DataFiles = ParseFiles();
  }
  if (TakeIf("LOG")) {
    Expect("ON");
    create.LogFiles = ParseFiles();
  }
  if (TakeIf("COLLATE")) TakeName();
  if (next_.Is("FOR") || next_.Is("AS")) {
    return TakeUnknown(statement, head, "CREATE DATABASE " + UCase(next_.Raw));
  }
  if (TakeIf("WITH")) SkipToBoundary(head);
  statement.What = std::move(create);
}

std::vector<std::string> Parser::ParseFiles() {
  std::vector<std::string> files;
  do {
    if (TakeIf("FILEGROUP")) {
      TakeName();
      if (TakeIf("CONTAINS")) TakeName();
      TakeIf("DEFAULT");
    }
    ExpectSymbol("(");
    std::string path;
    do {
      const Token key = Take();
      ExpectSymbol("=");
      if (key.Is("FILENAME")) {
        path = TakeString();
      } else if (key.Is("NAME")) {
        if (next_.Kind == TokenKind::String) {
          Take();
        } else {
          TakeName();
        }
      } else if (IsAmong(key, "SIZE MAXSIZE FILEGROWTH")) {
        // 10, 10MB, 10 %, UNLIMITED
        if (!TakeIf("UNLIMITED")) TakeNumber();
        if (next_.Kind == TokenKind::Word || next_.IsSymbol("%")) Take();
      } else {
        FailAt(key);
      }
    } while (TakeSymbol(","));
    ExpectSymbol(")");
    if (path.empty()) FailAt(last_);
    files.push_back(std::move(path));
  } while (TakeSymbol(","));
  return files;
}

void Parser::ParseAlterDatabase(Statement& statement, const Token& head) {
  AlterDatabase alter;
  if (IsAmong(next_, "AUDIT ENCRYPTION SCOPED")) {
    return TakeUnknown(statement, head, "ALTER DATABASE " + UCase(next_.Raw));
  }
  if (!TakeIf("CURRENT")) alter.Name = TakeName();
  if (IsAmong(next_, "ADD MODIFY REMOVE")) {
    return TakeUnknown(statement, head, "ALTER DATABASE " + UCase(next_.Raw));
  }
  if (TakeIf("COLLATE")) {
    TakeName();
    statement.What = std::move(alter);
    return;
  }
  Expect("SET");
  do {
    if (TakeIf("OFFLINE")) {
      alter.What = AlterDatabase::Action::Offline;
    } else if (TakeIf("ONLINE")) {
      alter.What = AlterDatabase::Action::Online;
    } else if (TakeIf("SINGLE_USER")) {
      alter.What = AlterDatabase::Action::SingleUser;
    } else {
      // Options that have no effect on this server: ON, = ON, = 100 SECONDS, (…), FULL.
      if (!IsAmong(next_, kDatabaseOptions)) FailAt(next_);
      Take();
      TakeSymbol("=");
      while (next_.Kind == TokenKind::Number || next_.Kind == TokenKind::String ||
             IsAmong(next_,
                     "ON OFF FULL SIMPLE BULK_LOGGED CHECKSUM TORN_PAGE_DETECTION NONE "
                     "LOCAL GLOBAL FORCED SECONDS MINUTES ALLOWED DISABLED CLEAR PARTIAL")) {
        Take();
      }
      if (next_.IsSymbol("(")) SkipValue();
      if (next_.Kind == TokenKind::Name) Take();
    }
  } while (TakeSymbol(","));
  if (TakeIf("WITH")) {
    if (TakeIf("ROLLBACK")) {
      alter.EndsOthers = true;
      if (TakeIf("AFTER")) {
        TakeNumber();
        TakeIf("SECONDS");
      } else {
        Expect("IMMEDIATE");
      }
    } else {
      Expect("NO_WAIT");
    }
  }
  statement.What = std::move(alter);
}

DropDatabase Parser::ParseDropDatabase() {
  DropDatabase drop;
  if (TakeIf("IF")) {
    Expect("EXISTS");
    drop.IfExists = true;
  }
  do {
    drop.Names.push_back(TakeName());
  } while (TakeSymbol(","));
  return drop;
}

void Parser::ParseBackup(Statement& statement, const Token& head) {
  if (!next_.Is("DATABASE")) {
    if (!IsAmong(next_, "LOG CERTIFICATE MASTER SERVICE SYMMETRIC")) FailAt(next_);
    return TakeUnknown(statement, head, "BACKUP " + UCase(next_.Raw));
  }
  Take();
  BackupDatabase backup;
  backup.Name = TakeName();
  Expect("TO");
  if (IsAmong(next_, "URL TAPE VIRTUAL_DEVICE")) {
    return TakeUnknown(statement, head, "BACKUP DATABASE TO " + UCase(next_.Raw));
  }
  Expect("DISK");
  ExpectSymbol("=");
  backup.Path = TakeString();
  if (TakeIf("WITH")) {
    do {
      if (TakeIf("INIT") || TakeIf("FORMAT")) {
        backup.Overwrites = true;
      } else if (TakeIf("STATS")) {
        backup.Stats = TakeSymbol("=") ? TakeNumber() : 10;
      } else {
        if (next_.Is("DIFFERENTIAL")) {
          return TakeUnknown(statement, head, "BACKUP DATABASE WITH DIFFERENTIAL");
        }
        if (!IsAmong(next_, kBackupOptions)) FailAt(next_);
        Take();
        if (TakeSymbol("=")) {
          if (next_.Kind != TokenKind::String && next_.Kind != TokenKind::Number) FailAt(next_);
          Take();
        }
      }
    } while (TakeSymbol(","));
  }
  statement.What = std::move(backup);
}

void Parser::ParseRestore(Statement& statement, const Token& head) {
  if (!next_.Is("VERIFYONLY")) return TakeUnknown(statement, head, "RESTORE");
  Take();
  Expect("FROM");
  Expect("DISK");
  ExpectSymbol("=");
  VerifyBackup verify{TakeString()};
  SkipToBoundary(head);
  statement.What = std::move(verify);
}

CreateLogin Parser::ParseCreateLogin() {
  CreateLogin create;
  create.Name = TakeName();
  if (TakeIf("FROM")) {
    Expect("WINDOWS");
    create.IsWindows = true;
    if (TakeIf("WITH")) SkipOptionList("DEFAULT_DATABASE DEFAULT_LANGUAGE");
    return create;
  }
  Expect("WITH");
  Expect("PASSWORD");
  ExpectSymbol("=");
  create.Password = TakeString();
  TakeIf("MUST_CHANGE");
  if (TakeSymbol(",")) {
    SkipOptionList("SID DEFAULT_DATABASE DEFAULT_LANGUAGE CHECK_EXPIRATION CHECK_POLICY");
  }
  return create;
}

CreateUser Parser::ParseCreateUser() {
  CreateUser create;
  create.Name = TakeName();
  create.Login = create.Name;
  if (TakeIf("WITHOUT")) {
    Expect("LOGIN");
    create.Login.clear();
  } else if (TakeIf("FOR") || TakeIf("FROM")) {
    Expect("LOGIN");
    create.Login = TakeName();
  }
  if (TakeIf("WITH")) SkipOptionList("DEFAULT_SCHEMA DEFAULT_LANGUAGE");
  return create;
}

void Parser::SkipOptionList(std::string_view known) {
  do {
    if (!IsAmong(next_, known)) FailAt(next_);
    Take();
    ExpectSymbol("=");
    if (next_.Kind == TokenKind::Binary || next_.Is("ON") || next_.Is("OFF")) {
      Take();
    } else {
      TakeName();
    }
  } while (TakeSymbol(","));
}

}  // namespace talu::standin
