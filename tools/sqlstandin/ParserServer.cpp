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
  if (IsAmong(Next(), "AUDIT ENCRYPTION SCOPED")) {
    return TakeUnknown(statement, head, "CREATE DATABASE " + UCase(Next().Raw));
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
  if (Next().Is("FOR") || Next().Is("AS")) {
    return TakeUnknown(statement, head, "CREATE DATABASE " + UCase(Next().Raw));
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
        if (Next().Kind == TokenKind::String) {
          Take();
        } else {
          TakeName();
        }
      } else if (IsAmong(key, "SIZE MAXSIZE FILEGROWTH")) {
        // 10, 10MB, 10 %, UNLIMITED
        if (!TakeIf("UNLIMITED")) TakeNumber();
        if (Next().Kind == TokenKind::Word || Next().IsSymbol("%")) Take();
      } else {
        FailAt(key);
      }
    } while (TakeSymbol(","));
    ExpectSymbol(")");
    if (path.empty()) FailAt(Last());
    files.push_back(std::move(path));
  } while (TakeSymbol(","));
  return files;
}

void Parser::ParseAlterDatabase(Statement& statement, const Token& head) {
  AlterDatabase alter;
  if (IsAmong(Next(), "AUDIT ENCRYPTION SCOPED")) {
    return TakeUnknown(statement, head, "ALTER DATABASE " + UCase(Next().Raw));
  }
  if (!TakeIf("CURRENT")) alter.Name = TakeName();
  if (IsAmong(Next(), "ADD MODIFY REMOVE")) {
    return TakeUnknown(statement, head, "ALTER DATABASE " + UCase(Next().Raw));
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
      if (!IsAmong(Next(), kDatabaseOptions)) FailAt(Next());
      Take();
      TakeSymbol("=");
      while (Next().Kind == TokenKind::Number || Next().Kind == TokenKind::String ||
             IsAmong(Next(),
                     "ON OFF FULL SIMPLE BULK_LOGGED CHECKSUM TORN_PAGE_DETECTION NONE "
                     "LOCAL GLOBAL FORCED SECONDS MINUTES ALLOWED DISABLED CLEAR PARTIAL")) {
        Take();
      }
      if (Next().IsSymbol("(")) SkipValue();
      if (Next().Kind == TokenKind::Name) Take();
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

void Parser::ParseBackup(Statement& statement, const Token& head) {
  if (!Next().Is("DATABASE")) {
    if (!IsAmong(Next(), "LOG CERTIFICATE MASTER SERVICE SYMMETRIC")) FailAt(Next());
    return TakeUnknown(statement, head, "BACKUP " + UCase(Next().Raw));
  }
  Take();
  BackupDatabase backup;
  backup.Name = TakeName();
  Expect("TO");
  if (IsAmong(Next(), "URL TAPE VIRTUAL_DEVICE")) {
    return TakeUnknown(statement, head, "BACKUP DATABASE TO " + UCase(Next().Raw));
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
        if (Next().Is("DIFFERENTIAL")) {
          return TakeUnknown(statement, head, "BACKUP DATABASE WITH DIFFERENTIAL");
        }
        if (!IsAmong(Next(), kBackupOptions)) FailAt(Next());
        Take();
        if (TakeSymbol("=")) {
          if (Next().Kind != TokenKind::String && Next().Kind != TokenKind::Number) FailAt(Next());
          Take();
        }
      }
    } while (TakeSymbol(","));
  }
  statement.What = std::move(backup);
}

void Parser::ParseRestore(Statement& statement, const Token& head) {
  if (!Next().Is("VERIFYONLY")) return TakeUnknown(statement, head, "RESTORE");
  Take();
  Expect("FROM");
  Expect("DISK");
  ExpectSymbol("=");
  VerifyBackup verify{TakeString()};
  SkipToBoundary(head);
  statement.What = std::move(verify);
}

CatalogueStatement Parser::ParseCreateLogin() {
  CatalogueStatement create{CatalogueStatement::Action::CreateLogin, {TakeName()}};
  if (TakeIf("FROM")) {
    Expect("WINDOWS");
    if (TakeIf("WITH")) SkipOptionList("DEFAULT_DATABASE DEFAULT_LANGUAGE");
    return create;
  }
  Expect("WITH");
  Expect("PASSWORD");
  ExpectSymbol("=");
  create.Value = TakeString();
  TakeIf("MUST_CHANGE");
  if (TakeSymbol(",")) {
    SkipOptionList("SID DEFAULT_DATABASE DEFAULT_LANGUAGE CHECK_EXPIRATION CHECK_POLICY");
  }
  return create;
}

CatalogueStatement Parser::ParseCreateUser() {
  CatalogueStatement create{CatalogueStatement::Action::CreateUser, {TakeName()}};
  create.Value = create.Names.front();
  if (TakeIf("WITHOUT")) {
    Expect("LOGIN");
    create.Value = "";
  } else if (TakeIf("FOR") || TakeIf("FROM")) {
    Expect("LOGIN");
    create.Value = TakeName();
  }
  if (TakeIf("WITH")) SkipOptionList("DEFAULT_SCHEMA DEFAULT_LANGUAGE");
  return create;
}

void Parser::SkipOptionList(std::string_view known) {
  do {
    if (!IsAmong(Next(), known)) FailAt(Next());
    Take();
    ExpectSymbol("=");
    if (Next().Kind == TokenKind::Binary || Next().Is("ON") || Next().Is("OFF")) {
      Take();
    } else {
      TakeName();
    }
  } while (TakeSymbol(","));
}

}  // namespace talu::standin
