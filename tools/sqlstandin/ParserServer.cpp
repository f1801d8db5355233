// The statements that the server itself executes, read word by word.
#include <charconv>

#include "Parser.h"

namespace talu::standin {
namespace {

int ToInt(std::string_view digits) {
  int number = 0;
  std::from_chars(digits.data(), digits.data() + digits.size(), number);
  return number;
}

}  // namespace

void Parser::ParseCreate(Statement& statement) {
  const Token head = last_;
  using Verb = DataStatement::Verb;
  if (TakeIf("DATABASE")) {
    statement.What = ParseCreateDatabase();
  } else if (TakeIf("LOGIN")) {
    statement.What = ParseCreateLogin();
  } else if (TakeIf("USER")) {
    statement.What = ParseCreateUser();
  } else if (TakeIf("TABLE")) {
    statement.What = TakeData(Verb::CreateTable, head);
  } else if (TakeIf("VIEW")) {
    statement.What = TakeData(Verb::CreateView, head);
  } else if (next_.Is("UNIQUE") || next_.Is("CLUSTERED") || next_.Is("NONCLUSTERED") ||
             next_.Is("INDEX")) {
    statement.What = TakeData(Verb::CreateIndex, head);
  } else {
    FailAt(next_);
  }
}

void Parser::ParseAlter(Statement& statement) {
  const Token head = last_;
  if (TakeIf("DATABASE")) {
    statement.What = ParseAlterDatabase();
  } else if (TakeIf("TABLE")) {
    statement.What = TakeData(DataStatement::Verb::AlterTable, head);
  } else {
    FailAt(next_);
  }
}

void Parser::ParseDrop(Statement& statement) {
  const Token head = last_;
  using Verb = DataStatement::Verb;
  if (TakeIf("DATABASE")) {
    statement.What = ParseDropDatabase();
  } else if (TakeIf("LOGIN")) {
    statement.What = DropLogin{TakeName()};
  } else if (TakeIf("USER")) {
    statement.What = DropUser{TakeName()};
  } else if (TakeIf("TABLE")) {
    statement.What = TakeData(Verb::DropTable, head);
  } else if (TakeIf("VIEW")) {
    statement.What = TakeData(Verb::DropView, head);
  } else if (TakeIf("INDEX")) {
    statement.What = TakeData(Verb::DropIndex, head);
  } else {
    FailAt(next_);
  }
}

CreateDatabase Parser::ParseCreateDatabase() {
  CreateDatabase create;
  create.Name = TakeName();
  if (TakeIf("ON")) {
    TakeIf("PRIMARY");
    create.DataFiles = ParseFiles();
  }
  if (TakeIf("LOG")) {
    Expect("ON");
    create.LogFiles = ParseFiles();
  }
  if (TakeIf("COLLATE")) TakeName();
  return create;
}

std::vector<std::string> Parser::ParseFiles() {
  std::vector<std::string> files;
  do {
    if (TakeIf("FILEGROUP")) TakeName();
    ExpectSymbol("(");
    std::string path;
    do {
      const Token key = next_;
      TakeName();
      ExpectSymbol("=");
      if (key.Is("FILENAME")) {
        path = TakeString();
      } else if (key.Is("NAME")) {
        if (next_.Kind == TokenKind::String) {
          Take();
        } else {
          TakeName();
        }
      } else if (key.Is("SIZE") || key.Is("MAXSIZE") || key.Is("FILEGROWTH")) {
        // 10, 10MB, 10 %, UNLIMITED
        if (next_.Kind != TokenKind::Number && !next_.Is("UNLIMITED")) FailAt(next_);
        Take();
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

AlterDatabase Parser::ParseAlterDatabase() {
  AlterDatabase alter;
  alter.Name = TakeName();
  if (TakeIf("COLLATE")) {
    TakeName();
    return alter;
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
      // Options that have no effect on this server.
      bool known = false;
      for (const char* option : {"MULTI_USER",
                                 "RECOVERY",
                                 "AUTO_CLOSE",
                                 "AUTO_SHRINK",
                                 "AUTO_CREATE_STATISTICS",
                                 "AUTO_UPDATE_STATISTICS",
                                 "AUTO_UPDATE_STATISTICS_ASYNC",
                                 "ANSI_NULL_DEFAULT",
                                 "ANSI_NULLS",
                                 "ANSI_PADDING",
                                 "ANSI_WARNINGS",
                                 "ARITHABORT",
                                 "CONCAT_NULL_YIELDS_NULL",
                                 "NUMERIC_ROUNDABORT",
                                 "QUOTED_IDENTIFIER",
                                 "RECURSIVE_TRIGGERS",
                                 "CURSOR_CLOSE_ON_COMMIT",
                                 "CURSOR_DEFAULT",
                                 "PAGE_VERIFY",
                                 "TRUSTWORTHY",
                                 "DB_CHAINING",
                                 "DATE_CORRELATION_OPTIMIZATION",
                                 "DISABLE_BROKER",
                                 "ENABLE_BROKER",
                                 "PARAMETERIZATION",
                                 "READ_COMMITTED_SNAPSHOT",
                                 "ALLOW_SNAPSHOT_ISOLATION",
                                 "COMPATIBILITY_LEVEL",
                                 "HONOR_BROKER_PRIORITY",
                                 "READ_WRITE"}) {
        known = known || next_.Is(option);
      }
      if (!known) FailAt(next_);
      Take();
      if (TakeSymbol("=")) {
        if (next_.Kind != TokenKind::Number) FailAt(next_);
        Take();
      } else {
        for (const char* value : {"ON", "OFF", "FULL", "SIMPLE", "BULK_LOGGED", "CHECKSUM",
                                  "TORN_PAGE_DETECTION", "NONE", "LOCAL", "GLOBAL", "FORCED"}) {
          if (TakeIf(value)) break;
        }
      }
    }
  } while (TakeSymbol(","));
  if (TakeIf("WITH")) {
    if (TakeIf("ROLLBACK")) {
      alter.EndsOthers = true;
      if (TakeIf("AFTER")) {
        if (next_.Kind != TokenKind::Number) FailAt(next_);
        Take();
        TakeIf("SECONDS");
      } else {
        Expect("IMMEDIATE");
      }
    } else {
      Expect("NO_WAIT");
    }
  }
  return alter;
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

BackupDatabase Parser::ParseBackup() {
  BackupDatabase backup;
  Expect("DATABASE");
  backup.Name = TakeName();
  Expect("TO");
  Expect("DISK");
  ExpectSymbol("=");
  backup.Path = TakeString();
  if (!TakeIf("WITH")) return backup;
  do {
    if (TakeIf("INIT") || TakeIf("FORMAT")) {
      backup.Overwrites = true;
    } else if (TakeIf("STATS")) {
      backup.Stats = 10;
      if (TakeSymbol("=")) {
        if (next_.Kind != TokenKind::Number) FailAt(next_);
        backup.Stats = ToInt(Take().Raw);
      }
    } else {
      bool known = false;
      for (const char* option : {"NOINIT",      "NOFORMAT",      "SKIP",
                                 "NOSKIP",      "REWIND",        "NOREWIND",
                                 "UNLOAD",      "NOUNLOAD",      "NAME",
                                 "DESCRIPTION", "MEDIANAME",     "MEDIADESCRIPTION",
                                 "COPY_ONLY",   "COMPRESSION",   "NO_COMPRESSION",
                                 "CHECKSUM",    "NO_CHECKSUM",   "RETAINDAYS",
                                 "EXPIREDATE",  "STOP_ON_ERROR", "CONTINUE_AFTER_ERROR"}) {
        known = known || next_.Is(option);
      }
      if (!known) FailAt(next_);
      Take();
      if (TakeSymbol("=")) {
        if (next_.Kind != TokenKind::String && next_.Kind != TokenKind::Number) FailAt(next_);
        Take();
      }
    }
  } while (TakeSymbol(","));
  return backup;
}

CreateLogin Parser::ParseCreateLogin() {
  CreateLogin create;
  create.Name = TakeName();
  if (TakeIf("FROM")) {
    Expect("WINDOWS");
    create.IsWindows = true;
    if (TakeIf("WITH")) SkipOptionList({"DEFAULT_DATABASE", "DEFAULT_LANGUAGE"});
    return create;
  }
  Expect("WITH");
  Expect("PASSWORD");
  ExpectSymbol("=");
  create.Password = TakeString();
  TakeIf("MUST_CHANGE");
  if (TakeSymbol(",")) {
    SkipOptionList(
        {"SID", "DEFAULT_DATABASE", "DEFAULT_LANGUAGE", "CHECK_EXPIRATION", "CHECK_POLICY"});
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
  if (TakeIf("WITH")) SkipOptionList({"DEFAULT_SCHEMA"});
  return create;
}

void Parser::SkipOptionList(std::initializer_list<std::string_view> known) {
  do {
    bool isKnown = false;
    for (const std::string_view option : known) isKnown = isKnown || next_.Is(option);
    if (!isKnown) FailAt(next_);
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
