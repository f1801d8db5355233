#include "CheckCases.h"

#include <fstream>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "runtime/TextFunctions.h"

namespace talu::packcheck {
namespace {

constexpr auto kClient = InstallMode::Client;
constexpr auto kServer = InstallMode::Server;
constexpr auto kUpgrade = InstallType::Upgrade;

using nlohmann::json;

/// Lines, each "|" a line end.
std::string Lines(const std::string& text) {
  return Replace(text, "|", "\r\n");
}

const std::string kTitle = "AppTitle|{|Desk|}|";
const std::string kAppFolder = "AppFolder|{|Shop|}|";
const std::string kFolders = kAppFolder + "DBFolder|{|Data|}|";
const std::string kScripts = "FreshDBSript|{|A.sql|}|DBSript|{|Sales|}|";
const std::string kRest = kFolders + kScripts;
const char* const kA = "SQLScript/Fresh/A.sql";
const char* const kB = "SQLScript/Fresh/B.sql";
const std::string kPlain = "--taluGO|use master|GO|";

Files Config(const std::string& text) {
  return {{"AppCfg.txt", Lines(text)}};
}
std::string Utf16(const std::string& ascii) {
  std::string bytes = "\xFF\xFE";
  for (const char character : Lines(ascii)) bytes.append({character, '\0'});
  return bytes;
}
/// A script that uses a database which is on the server.
Files Using(Files files) {
  files[kA] = Lines("--taluGO|USE Old|GO|");
  return files;
}
/// A file with these bytes, or with some.
struct Added {
  Added(const char* path, std::string bytes = "x") : Path(path), Bytes(std::move(bytes)) {}
  const char* Path;
  std::string Bytes;
};
/// Blocks behind the usual ones, and files that the pack has besides.
Files More(const std::string& blocks, const std::vector<Added>& added = {}) {
  Files files = Config(kTitle + kRest + blocks);
  for (const Added& file : added) files[file.Path] = file.Bytes;
  return files;
}
/// The only script.
Files Script(const std::string& text) {
  return {{kA, Lines(text)}};
}
Files Batches(const std::string& text) {
  return Script("--taluGO|" + text);
}
Files Two(const std::string& a, const std::string& b) {
  return {
      {"AppCfg.txt", Lines(kTitle + kFolders + "FreshDBSript|{|A.sql|B.sql|}|DBSript|{|1|2|}|")},
      {kA, Lines(a)},
      {kB, Lines(b)}};
}
/// A batch with the database's files; `begin` is up to its name.
std::string Create(const std::string& begin, const std::string& mdf = "C:\\D\\s.mdf",
                   const std::string& ldf = "C:\\D\\s.ldf") {
  return begin + "ON (FILENAME = '" + mdf + "') LOG ON (FILENAME = '" + ldf + "')|GO|";
}
/// An upgrade of a database that only the upgrade names.
Files UpgradeOnly() {
  return {{"AppCfg.txt", Lines(kTitle + kFolders + "UpgradeDBSript|{|A.sql|}|DBSript|{|Sales|}|")},
          {kA, "-"},
          {"SQLScript/Upgrade/A.sql", Lines("--taluGO|USE Sales|GO|")}};
}

const std::string kLong(100, 'd');
const std::string kLog = "print C:\\Program Files\\TA-LU\\Shop\\Ta-luErrLog.txt //\r\n";
const std::string kRecord = "print C:\\Program Files\\TA-LU\\Shop\\Uninstall.dat ";
const std::string kFails = kLog + "//\r\nInvalid procedure call or argument";
const std::string kFormat = "Script format is not correct....";
const std::string kData = "C:\\Program Files\\TA-LU\\Shop\\Data";
const std::string kBatch = "sql \r\n";

const CheckCase kCases[] = {
    // AppCfg.txt
    {"CFG-MISSING", {{"AppCfg.txt", "-"}}, "msgbox Run-time error '53'"},
    {"CFG-ENCODING", Config("\xEF\xBB\xBF" + kTitle + kRest), "!Caption Desk"},
    {"CFG-LINE-ENDS", {{"AppCfg.txt", Replace(kTitle + kRest, "|", "\n")}}, "!Caption Desk"},
    {"CFG-BLANK-LINE", Config("|" + kAppFolder + kTitle + "DBFolder|{|Data|}|" + kScripts),
     "Caption Shop"},
    {"CFG-EMPTY-VALUE", More("AddOns|{|a.exe||b.exe|}|", {"AddOns/a.exe", "AddOns/b.exe"}),
     "!b.exe"},
    {"CFG-BLANKS-VALUE", Config(kTitle + kFolders + "FreshDBSript|{|  |A.sql|}|DBSript|{|1|}|"),
     "msgbox Path/File access error"},
    {"CFG-KEY-BLANKS", Config("AppTitle |{|Desk|}|" + kRest), "!Caption Desk"},
    {"CFG-KEY-CASE", Config("apptitle|{|Desk|}|" + kRest), "!Caption Desk"},
    {"CFG-KEY-BEGINNING", Config("App|" + kAppFolder + kTitle + "DBFolder|{|Data|}|" + kScripts),
     "Caption Shop"},
    {"CFG-KEY-UNKNOWN", More("Shortcut|{|\\Shop.exe,Desktop,Shop|}|"), "!shortcut"},
    {"CFG-KEY-TWICE", Config("AppTitle|{|Bench|}|" + kTitle + kRest), "Caption Bench"},
    {"CFG-NOT-OPENED CFG-NO-TITLE", Config("AppTitle|Desk|" + kRest), "Caption Shop"},
    {"CFG-NOT-CLOSED", More("AddOns|{|a.exe|FinalMsg|{|done|}|", {"AddOns/a.exe"}),
     kRecord + "AddOns:FinalMsg"},
    {"CFG-LAST-OPEN", More("FinalMsg|{|done"), "Caption \rdone"},
    {"CFG-BRACE", Config("AppTitle|{ |Desk|}|" + kRest), "!Caption Desk"},
    {"CFG-VALUE-BRACE", More("FinalMsg|{|{|done|}|"), "Caption \r{"},
    {"CFG-VALUE-OPENS CFG-VALUE-KEY", Config("FinalMsg|{|AppT|{|Bench|}|" + kTitle + kRest),
     "Caption Bench"},
    {"CFG-VALUE-KEY", Config("FinalMsg|{|AppT|Bench|}|" + kTitle + kRest), "Caption Desk"},
    {"CFG-TOO-MANY",
     Config("AppTitle|{|" + Replace(std::string(32768, 'x'), "x", "x|") + "}|" + kRest),
     "msgbox Run-time error '6'"},
    {"CFG-NO-TITLE", Config(kRest), "!Caption Desk"},
    {"CFG-NO-APPFOLDER", Config(kTitle + "DBFolder|{|Data|}|" + kScripts),
     "msgbox Bad file name or number"},
    {"CFG-NO-DBFOLDER", Config(kTitle + kAppFolder + kScripts), "FrmSQLNonQuery stays"},
    {"CFG-NO-SCRIPTS", {{"AppCfg.txt", Lines(kTitle + kFolders)}, {kA, "-"}}, "!sql"},
    {"CFG-FOLDER-NAME", Config(kTitle + "AppFolder|{|A\\B|}|DBFolder|{|Data|}|" + kScripts),
     "msgbox Path not found"},
    {"CFG-FOLDER-TALU", Config(kTitle + "AppFolder|{|TA|}|DBFolder|{|Data|}|" + kScripts),
     "print C:\\Program Files\\TA-LU\\Uninstall.dat"},
    {"CFG-DBSRIPT-FEW SQL-BACKUP-MISSED",
     Using(Config(kTitle + kFolders + "FreshDBSript|{|A.sql|}|")), "!BACKUP"},
    {"CFG-DBSRIPT-MANY",
     Using(Config(kTitle + kFolders + "FreshDBSript|{|A.sql|}|DBSript|{|1|2|}|")),
     "BACKUP DATABASE Old"},
    // Scripts
    {"SQL-NOT-THERE", {{kA, "-"}}, "msgbox Path not found"},
    {"SQL-NOT-LISTED", {{kB, Lines("--taluGO|USE Other|GO|")}}, "!Other"},
    {"SQL-UTF16", {{kA, Utf16("--taluGO|PRINT 1|GO|")}}, kFormat},
    {"SQL-UTF8", Batches("PRINT 'caf\xC3\xA9'|GO|"), "PRINT 'caf\u00c3\u00a9'"},
    {"SQL-LINE-ENDS", {{kA, "--taluGO\nuse master\nGO\n"}}, "!sql"},
    {"SQL-NO-DIRECTIVE", Script("use master|GO|"), kFormat},
    {"SQL-LATE-DIRECTIVE", Script("-- Sales|" + kPlain), kFormat},
    {"SQL-LINE-LEAK", Two("--taluLineByLine|PRINT 1|", "PRINT 2|"), "sql PRINT 2"},
    {"SQL-DIRECTIVE-INSIDE", Batches("PRINT 1 -- see --taluGO|PRINT 2|GO|"), "!PRINT 1"},
    {"SQL-LINE-IN-BATCH", Batches("--taluLineByLine|PRINT 1|PRINT 2|GO|"), "PRINT 1\r\nPRINT 2"},
    {"SQL-LAST-GO", Two("--taluGO|PRINT 1|", "--taluGO|PRINT 2|GO|"),
     kBatch + "PRINT 1\r\nPRINT 2"},
    {"SQL-LAST-GO", Two("--taluGO|PRINT 1|", "--taluLineByLine|PRINT 2|"), "!PRINT 1"},
    {"SQL-LAST-GO", Batches("PRINT 1|"), "!PRINT 1"},
    {"SQL-GO-COMMENT", Batches("PRINT 1 /*|GO|*/|GO|"), kBatch + "PRINT 1 /* "},
    {"SQL-GO-TEXT", Batches("PRINT '1|GO|'|GO|"), kBatch + "PRINT '1 "},
    {"SQL-GO-TAIL", Batches("PRINT 1|GO -- end|PRINT 2|GO|"), kBatch + "PRINT 1\r\nGO -- end"},
    {"SQL-GO-TAIL", Batches("PRINT 1|GO\t|GO|"), kBatch + "PRINT 1\r\nGO\t"},
    {"SQL-TEXT-LINES", Batches("PRINT '1|  2'|GO|"), kBatch + "PRINT '1\r\n2'"},
    {"SQL-SQLCMD", Batches(":setvar Name Sales|PRINT 1|GO|"), kBatch + ":setvar"},
    {"SQL-LINE-GO", Script("--taluLineByLine|PRINT 1|GO|"), "sql GO"},
    {"SQL-LINE-SPLIT", Script("--taluLineByLine|INSERT T VALUES|(1)|"), "sql (1)"},
    {"SQL-CREATE-CASE", Batches(Create("create database Sales ")), kRecord + "DBNames:0"},
    {"SQL-CREATE-CASE PW-CLEAR", Batches("CREATE  LOGIN Desk WITH PASSWORD = 'x'|GO|"),
     kRecord + "DBLogins:0"},
    {"SQL-CREATE-LINE", Script("--taluLineByLine|CREATE LOGIN Desk FROM WINDOWS|"),
     kRecord + "DBLogins:0"},
    {"SQL-LINE-ENDS SQL-CREATE-LINE",
     Script("--taluLineByLine|-- A\nCREATE LOGIN Desk FROM WINDOWS|"), "\nCREATE LOGIN"},
    {"SQL-CREATE-TWO",
     Batches("CREATE LOGIN Desk FROM WINDOWS|CREATE LOGIN Bench FROM WINDOWS|GO|"),
     kRecord + "DBLogins:1, Desk\r\n"},
    {"SQL-CREATE-NAME", Batches("CREATE LOGIN Desk|WITH CHECK_POLICY = OFF|GO|"),
     kRecord + "DBLogins:1, Desk\r\nWITH\r\n"},
    {"SQL-CREATE-NAME SQL-BACKUP-BRACKETS", Batches(Create("CREATE DATABASE [My Sales] ")),
     kRecord + "DBNames:1, [My\r\n"},
    {"SQL-CREATE-LAST", Batches("CREATE LOGIN Desk|GO|"), kFails},
    {"SQL-DB-FILENAME", Batches("CREATE DATABASE Sales COLLATE Latin1_General_CI_AS|GO|"),
     kRecord + "DBNames:0"},
    {"SQL-DB-DRIVE", Batches(Create("CREATE DATABASE Sales ", "s.mdf", "s.ldf")), kFails},
    {"SQL-DB-MDF", Batches(Create("CREATE DATABASE Sales ", "C:\\D\\s.MDF")), kFails},
    {"SQL-DB-FOLDERS", Batches(Create("CREATE DATABASE Sales ", "C:\\D\\s.mdf", "C:\\L\\s.ldf")),
     "'" + kData + "\\s.mdf') LOG ON (FILENAME = 'C:\\L\\s.ldf'"},
    {"SQL-DB-SUBFOLDER",
     Batches(Create("CREATE DATABASE Sales ", "C:\\D\\s.mdf", "C:\\D\\L\\s.ldf")),
     "'" + kData + "\\L\\s.ldf'"},
    {"SQL-BACKUP-NAME", Batches("USE master;|GO|"), "BACKUP DATABASE master; TO"},
    {"SQL-BACKUP-NAME", Batches("PRINT 1 -- BECAUSE it is|GO|"), "BACKUP DATABASE it is TO"},
    {"SQL-BACKUP-CUT SQL-REFUSED", Batches("ALTER DATABASE master|GO|"),
     kLog + "//\r\nInvalid procedure call"},
    {"SQL-BACKUP-LONG", Batches("PRINT '" + std::string(32767, 'x') + "'|USE master|GO|"),
     kLog + "//\r\nOverflow"},
    {"SQL-BACKUP-MERGED",
     Batches(Create("CREATE DATABASE Sales2 ") +
             Create("CREATE DATABASE Sales ", "C:\\D\\t.mdf", "C:\\D\\t.ldf")),
     "!BACKUP DATABASE Sales TO"},
    {"SQL-BACKUP-MISSED", UpgradeOnly(), "!BACKUP", kServer, kUpgrade},
    // Deployment
    {"APP-MISSING", {{"Application/Shop.exe", "-"}}, "'Aplication' Not found", kClient},
    {"APP-SHORT-NAME",
     {{"Application/a.b", "x"}},
     "Can't copy D:\\Pack\\Application\\a.b",
     kClient},
    {"LNK-FIELDS", More("Shotcut|{|\\Shop.exe,Desktop|}|"), kLog + "//\r\nSubscript out", kClient},
    {"LNK-BACKSLASH", More("Shotcut|{|Shop.exe,Desktop,Shop|}|"), "TA-LU\\ShopShop.exe", kClient},
    {"LNK-TARGET", More("Shotcut|{|\\Desk.exe,Desktop,Shop|}|"),
     "!Copying file - C:\\Program Files\\TA-LU\\Shop\\D:\\Pack\\Application\\Desk.exe", kClient},
    {"LNK-FOLDER", More("Shotcut|{|\\Shop.exe,Start Menu,Shop|}|"), "!shortcut", kClient},
    {"LNK-NAME", More("Shotcut|{|\\Shop.exe,Desktop,A:B|}|"), "A:B.lnk can't created", kClient},
    {"DSN-FIELDS", More("SystemDSN|{|SQL Server,Shop,Sales|}|"), "!connect", kClient},
    {"DSN-DRIVER", More("SystemDSN|{|Sql Server,Shop,Sales,u,|}|"), "dsn Sql Server  Driver or",
     kClient},
    {"REG-BACKSLASH", More("RegnLocation|{|Parts|}|", {"Application/Parts/a.ocx"}),
     "!start regsvr32", kClient},
    {"REG-FOLDER", More("RegnLocation|{|\\Parts|}|"), kLog + "//\r\nPath not found", kClient},
    {"REG-NOTHING", More("RegnLocation|{|\\Parts|}|", {"Application/Parts/a.txt"}),
     "!start regsvr32", kClient},
    {"REG-WHOLE",
     {{"Application/Bin/a.dll", "x"}},
     "start regsvr32 /s \"C:\\Program Files\\TA-LU\\Shop\\Bin\\a.dll\"",
     kClient},
    {"REG-EXPORT",
     More("RegnLocation|{|\\Parts|}|",
          {{"Application/Parts/a.ocx", Library("Alpha DllRegisterServer")},
           {"Application/Parts/b.ocx", Library("Alpha Beta Gamma")}}),
     "start regsvr32 /s \"C:\\Program Files\\TA-LU\\Shop\\Parts\\b.ocx\"", kClient,
     InstallType::Fresh, "Parts\\b.ocx: warning", "a library that is no component"},
    {"REG-EXPORT", More("SpecialRegn|{|a.ocx|}|", {"SpecialRegn/a.ocx"}),
     "start regsvr32 /s \"C:\\Windows\\system\\a.ocx\"", kClient},
    {"APP-LONG-PATH",
     {{"Application/" + kLong + "/" + std::string(131, 'f'), "x"}},
     "copy D:\\Pack\\Application\\" + kLong + "\\f",
     kClient,
     InstallType::Fresh,
     "its path has 260 characters",
     "a file one letter too long"},
    {"", {{"Application/" + kLong + "/" + std::string(130, 'f'), "x"}}, "", kClient},
    {"APP-LONG-PATH",
     {{"Application/" + kLong + "/" + std::string(119, 'f') + "/a.txt", "x"}},
     "!a.txt",
     kClient,
     InstallType::Fresh,
     "its path has 248 characters",
     "a folder one letter too long"},
    {"",
     {{"Application/" + kLong + "/" + std::string(118, 'f') + "/a.txt", "x"}},
     "a.txt",
     kClient},
    {"SPC-FILE", More("SpecialRegn|{|a.ocx|}|"),
     "copy D:\\Pack\\SpecialRegn\\a.ocx C:\\Windows\\system 6416 The path", kClient},
    {"ADD-FILE", More("AddOns|{|a.exe|}|"), "run D:\\Pack\\AddOns\\a.exe -1", kClient},
    {"ADD-CASE", More("AddOns|{|a.EXE|}|", {"AddOns/a.EXE"}), "!run ", kClient},
    {"ADD-KIND", More("AddOns|{|a.bat|}|", {"AddOns/a.bat"}), "!run ", kClient},
    {"ADD-BLANKS", More("AddOns|{|My Tool.exe|}|", {"AddOns/My.exe", "AddOns/My Tool.exe"}),
     "run D:\\Pack\\AddOns\\My Tool.exe 5", kClient},
    {"SET-FIELDS", More("WriteSettings|{|\\a.txt,x|}|"), "!not Finished", kClient},
    {"SET-TXT", More("WriteSettings|{|\\a.ini,x,SERVER|}|"), "!a.ini", kClient},
    {"SET-BACKSLASH", More("WriteSettings|{|a.txt,x,SERVER|}|"),
     "print C:\\Program Files\\TA-LU\\Shopa.txt xSERVER", kClient},
    {"SET-FOLDER", More("WriteSettings|{|\\Sub\\a.txt,x,SERVER|}|"), kLog + "//\r\nPath not found",
     kClient},
    {"SET-TWICE", More("WriteSettings|{|\\a.txt,x,SERVER|\\A.txt,y,SERVER|}|"),
     "delete C:\\Program Files\\TA-LU\\Shop\\A.txt", kClient},
    {"SET-VALUE", More("WriteSettings|{|\\a.txt,x,NAME|}|"),
     "print C:\\Program Files\\TA-LU\\Shop\\a.txt x\r\n", kClient},
    {"PW-CLEAR", More("SystemDSN|{|SQL Server,Shop,master,sa,secret|}|"),
     kRecord + "SystemDSN:SQL Server,Shop,master,sa,secret", kClient},
    {"ACC-LINE", {{"packcheck.ignore", "ADD-FILE | AppCfg.txt | a.exe | not yet there"}}, "!a.exe"},
};

/// The text of a line of the data, a byte for each of its characters.
std::string Bytes(const json& text) {
  const std::string utf8 = text;
  std::string bytes;
  for (std::size_t at = 0; at < utf8.size(); ++at) {
    const unsigned lead = static_cast<unsigned char>(utf8[at]);
    if (lead > 0xC3) throw std::runtime_error("beyond \\u00ff: " + utf8);
    bytes += static_cast<char>(lead < 0x80 ? lead : (lead << 6 | (utf8.at(++at) & 0x3FU)) & 0xFFU);
  }
  return Lines(bytes);
}

CheckCase Mistake(const json& line) {
  CheckCase test;
  for (const auto& [key, value] : line.items()) {
    if (key == "mistake") {
      test.Mistake = value;
    } else if (key == "finds") {
      test.Codes = value == "none" ? "" : value;
    } else if (key == "says") {
      test.Says = value;
    } else if (key == "plan") {
      test.Proof = Lines(value);
    } else if (key == "batches") {
      test.Pack[kA] = "--taluGO\r\n" + Bytes(value);
    } else if (key == "script") {
      test.Pack[kA] = Bytes(value);
    } else if (key == "blocks") {
      test.Pack["AppCfg.txt"] = Lines(kTitle + kRest) + Bytes(value);
    } else if (key == "config") {
      test.Pack["AppCfg.txt"] = Bytes(value);
    } else if (key == "files") {
      for (const auto& [path, text] : value.items()) {
        test.Pack[path] = text.is_null() ? "-" : Bytes(text);
      }
    } else if (key == "mode" && value == "client") {
      test.Mode = kClient;
    } else if (key == "type" && (value == "demo" || value == "upgrade")) {
      test.Type = value == "demo" ? InstallType::Demo : kUpgrade;
    } else {
      throw std::runtime_error("what is " + key + "?");
    }
  }
  if (test.Mistake.empty() || !line.contains("finds"))
    throw std::runtime_error("no mistake, or no finds");
  return test;
}

}  // namespace

Files PlainPack() {
  Files files = Config(kTitle + kRest);
  files[kA] = Lines(kPlain);
  files["Application/Shop.exe"] = "MZ";
  files["Setup.exe"] = "MZ";
  return files;
}

std::vector<CheckCase> CheckCases() {
  std::vector<CheckCase> cases(std::begin(kCases), std::end(kCases));
  std::ifstream mistakes(TALU_MISTAKES);
  for (std::string line; std::getline(mistakes, line);) {
    if (!line.starts_with("//")) cases.push_back(Mistake(json::parse(line)));
  }
  return cases;
}

}  // namespace talu::packcheck
