// What becomes of scripts that other tools wrote.

#include <sys/resource.h>

#include <csignal>
#include <sstream>

#include "ConvertCommand.h"
#include "PackFolder.h"
#include "runtime/TextFunctions.h"

namespace talu::packcheck {
namespace {

/// Lines, each "|" a line end.
std::string Lines(const std::string& text) {
  return Replace(text, "|", "\r\n");
}

std::string Utf16(const std::string& ascii, bool bigEndian = false) {
  std::string bytes = bigEndian ? "\xFE\xFF" : "\xFF\xFE";
  for (const char c : ascii) {
    bytes += bigEndian ? std::string{'\0', c} : std::string{c, '\0'};
  }
  return bytes;
}

struct ConvertCase {
  const char* What;
  std::string Before;
  /// "=" for the same bytes; with "!" before it, why the file is left as it is.
  std::string After;
  int CodePage = 1252;
};

const std::string kFiles = " ON (FILENAME = 'C:\\D\\s.mdf')|GO|";

const ConvertCase kCases[] = {
    {"nothing", "--taluGO|PRINT 1|GO|", "="},
    {"an empty file", "", "="},
    {"line by line", "--taluLineByLine|USE Sales;|GO", "="},
    // Encodings and line ends
    {"UTF-16", Utf16("--taluGO\r\nGO\r\n"), "--taluGO|GO|"},
    {"UTF-16, the other way round", Utf16("--taluGO\nGO\n", true), "--taluGO|GO|"},
    {"UTF-16 without a mark", Utf16("--taluGO\nGO\n").substr(2), "--taluGO|GO|"},
    {"a mark twice", "\xEF\xBB\xBF\xEF\xBB\xBF--taluGO|GO|", "--taluGO|GO|"},
    {"a mark in the middle", "\xEF\xBB\xBF--taluGO|GO|\xEF\xBB\xBFPRINT 1|GO|",
     "!it has letters that code page 1252 lacks"},
    {"half a letter of UTF-16", Utf16("GO") + "x",
     "!it begins as UTF-16 but has an odd number of bytes"},
    {"UTF-8", "--taluGO|PRINT 'caf\xC3\xA9 \xE2\x82\xAC'|GO|", "--taluGO|PRINT 'caf\xE9 \x80'|GO|"},
    {"a mark of UTF-8", "\xEF\xBB\xBF--taluGO|GO|", "--taluGO|GO|"},
    {"a mark and no UTF-8", "\xEF\xBB\xBF--taluGO|\xE9|GO|", "!it has bytes that are not UTF-8"},
    {"the mark alone, where UTF-8 is the code page", "\xEF\xBB\xBF--taluGO|PRINT '\xC5\x82'|GO|",
     "--taluGO|PRINT '\xC5\x82'|GO|", 65001},
    {"the code page's own letters", "--taluGO|PRINT '\xE9\x81'|GO|", "="},
    {"bytes of another code page", "--taluGO|PRINT '\x81!'|GO|",
     "!it has bytes that are no letters of code page 932 (--code-page names another)", 932},
    {"NUL characters", "--taluGO|" + std::string(80, 'x') + std::string(1, '\0'),
     "!it has NUL characters, so it is no text"},
    {"line feeds", "--taluGO\nPRINT 1\rGO\n\nPRINT 2|GO", "--taluGO|PRINT 1|GO||PRINT 2|GO"},
    {"line feeds in a text", "--taluGO|PRINT 'a \n\n b'|GO|", "="},
    {"line feeds in a text, read line by line", "--taluLineByLine|PRINT 'a\nb'|", "="},
    {"line feeds everywhere",
     "--taluGO\nPRINT 'a \n\n b' + [x\ny] -- it's\n/* '\n */\nPRINT '\nGO\n'\n"
     "PRINT 'c\rd|e'\nGO 2\n",
     "--taluGO|PRINT 'a \n\n b' + [x\ny] -- it's|/* '| */|PRINT '\nGO\n'|PRINT 'c|d|e'|GO|"
     "PRINT 'a \n\n b' + [x\ny] -- it's|/* '| */|PRINT '\nGO\n'|PRINT 'c|d|e'|GO|"},
    {"line feeds behind what stays open", "--taluGO\nPRINT 'a\nb'\nGO\nPRINT 'c\nGO\n",
     "--taluGO|PRINT 'a|b'|GO|PRINT 'c|GO|"},
    // Letters that are not there
    {"a letter among values", "--taluGO|INSERT T VALUES (1, N'\xC5\x81uk')|GO|",
     "--taluGO|INSERT T VALUES (1, NCHAR(321) + N'uk')|GO|"},
    {"letters, rows and a pair of halves",
     "--taluGO|INSERT T VALUES (N'a\xC5\x82', f(N'\xC3\xA9')),|(N'\xF0\x9F\x98\x80', 2)|GO|",
     "--taluGO|INSERT T VALUES (N'a' + NCHAR(322), f(N'\xE9')),|"
     "(NCHAR(55357) + NCHAR(56832), 2)|GO|"},
    {"letters of a batch that is sent twice",
     "--taluGO|INSERT T VALUES (N'\xC5\x81\xC3\xA9')|GO 2|",
     "--taluGO|INSERT T VALUES (NCHAR(321) + N'\xE9')|GO|INSERT T VALUES (NCHAR(321) + "
     "N'\xE9')|GO|"},
    {"a letter in an argument", "--taluGO|EXEC p N'\xC5\x82'|GO|",
     "!it has letters that code page 1252 lacks"},
    {"a letter within a value", "--taluGO|INSERT T VALUES (CAST(N'\xC5\x82' AS xml))|GO|",
     "!it has letters that code page 1252 lacks"},
    {"a letter of a text that is no Unicode", "--taluGO|INSERT T VALUES ('\xC5\x82')|GO|",
     "!it has letters that code page 1252 lacks"},
    {"a letter that another code page has", "--taluGO|EXEC p N'\xC5\x82'|GO|",
     "--taluGO|EXEC p N'\xB3'|GO|", 1250},
    // The directive
    {"no directive", "PRINT 1|GO|", "--taluGO|PRINT 1|GO|"},
    {"no directive and no GO", "PRINT 1", "--taluGO|PRINT 1|GO|"},
    {"a late directive", "-- Sales|  --TALUGO -- batches|PRINT 1|GO|",
     "--TALUGO -- batches|-- Sales|PRINT 1|GO|"},
    {"a late mention", "PRINT 1 -- --taluGO|GO|", "="},
    {"a late directive of the other kind", "-- Sales|--taluLineByLine|PRINT 1|", "="},
    // GO
    {"the last GO", "--taluGO|PRINT 1|", "--taluGO|PRINT 1|GO|"},
    {"the last GO and the last line end", "--taluGO|PRINT 1", "--taluGO|PRINT 1|GO|"},
    {"tails", "--taluGO|PRINT 1|GO;|PRINT 2|\tgo\t|PRINT 3|GO -- end|PRINT 4|GO 1 /* x */|",
     "--taluGO|PRINT 1|GO|PRINT 2|GO|PRINT 3|-- end|GO|PRINT 4|/* x */|GO|"},
    {"three times", "--taluGO|INSERT T DEFAULT VALUES|GO 3|",
     "--taluGO|INSERT T DEFAULT VALUES|GO|INSERT T DEFAULT VALUES|GO|"
     "INSERT T DEFAULT VALUES|GO|"},
    {"twice, mended", "--taluGO|/*|GO|*/USE A;|PRINT 1|GO 2|",
     "--taluGO|/*|-- GO|*/USE A|GO|PRINT 1|GO|/*|-- GO|*/USE A|GO|PRINT 1|GO|"},
    {"too often", "--taluGO|PRINT 1|GO 101|PRINT 2|GO|", "="},
    {"words that begin like GO", "--taluGO|GOTO x|GO to|GO -1|GO 0|GO|", "="},
    {"GO in a comment", "--taluGO|PRINT 1 /*|GO|*/|GO|", "--taluGO|PRINT 1 /*|-- GO|*/|GO|"},
    {"GO in a text", "--taluGO|USE A;|PRINT '|GO|'|GO|", "="},
    {"what stays open", "--taluGO|USE A;|GO|PRINT '|", "--taluGO|USE A|GO|PRINT '|"},
    // USE
    {"USE and others", "--taluGO|USE [A] SELECT 1|GO|use B;|  SELECT 2|GO|",
     "--taluGO|USE [A]|GO|SELECT 1|GO|USE B|GO|  SELECT 2|GO|"},
    {"USE, the way it is read", "--taluGO|/* A */|USE  A|GO|", "="},
    {"USE behind a comment that hides it", "--taluGO|-- BECAUSE of|USE A|GO|",
     "--taluGO|-- BECAUSE of|GO|USE A|GO|"},
    {"USE that is no statement, or not the first",
     "--taluGO|PRINT 1|USE A|GO|SELECT 1 OPTION (USE HINT ('x'))|GO|", "="},
    {"USE in quotes", "--taluGO|use \"A b\"|GO|USE [a]]b]|GO|",
     "--taluGO|USE [A b]|GO|USE [a]]b]|GO|"},
    {"a blank file", "||", "="},
    {"USE twice", "--taluGO|USE A USE B PRINT 1|GO|", "--taluGO|USE A|GO|USE B|GO|PRINT 1|GO|"},
    {"a system database", "--taluGO|USE [master];|GO|USE master|GO|use MSDB PRINT 1|GO|",
     "--taluGO|use [master];|GO|use master|GO|use MSDB PRINT 1|GO|"},
    // What is created
    {"the name and what follows", "--taluGO|CREATE DATABASE [S] | CONTAINMENT = NONE|" + kFiles,
     "--taluGO|CREATE DATABASE [S] CONTAINMENT = NONE|" + kFiles},
    {"in small letters", "--taluGO|create|database\tS\tON (Filename = 'C:\\D\\s.MDF')|GO|",
     "--taluGO|CREATE DATABASE S ON (FILENAME = 'C:\\D\\s.mdf')|GO|"},
    {"a creation under IF, which would be recorded then",
     "--taluGO|IF DB_ID('S') IS NULL create database S ON (filename = 'C:\\D\\s.MDF')|GO|"
     "IF DB_ID('S') IS NULL BEGIN|CREATE DATABASE S|ON (FILENAME = 'C:\\D\\s.mdf')|END|GO|"
     "CREATE PROCEDURE p AS create login L|with password = 'x'|GO|",
     "="},
    {"a path without its drive",
     "--taluGO|CREATE DATABASE S ON (filename = '/var/s.mdf')|GO|"
     "CREATE DATABASE S ON (filename = 'C:\\s.dat')|GO|"
     "create database S ON (FILENAME = '/var/s.mdf')|GO|",
     "="},
    {"a login", "--taluGO|Create Login L|with password = 'x'|GO|",
     "--taluGO|CREATE LOGIN L with password = 'x'|GO|"},
    {"ALTER", "--taluGO|ALTER DATABASE S|SET OFFLINE|GO|ALTER DATABASE [S]|SET ONLINE|GO|",
     "--taluGO|ALTER DATABASE S SET OFFLINE|GO|ALTER DATABASE [S]|SET ONLINE|GO|"},
    {"a comment behind the name", "--taluGO|CREATE DATABASE S -- new|" + kFiles, "="},
    {"a comment behind the name and nothing else", "--taluGO|ALTER DATABASE S|GO -- x|",
     "--taluGO|ALTER DATABASE S|GO|-- x|GO|"},
    {"a comment behind GO and a name", "--taluGO|USE A|GO -- x|", "--taluGO|USE A|GO|-- x|GO|"},
    {"no GO is made", "--taluGO|USE A GO|PRINT 1|GO|", "="},
    {"names of nothing", "--taluGO|GRANT CREATE DATABASE|TO a|ALTER DATABASE|SCOPED x|GO|", "="},
    {"USE of what the batch creates", "--taluGO|create database S|use s;|PRINT 1|GO|",
     "--taluGO|CREATE DATABASE S|GO|USE s|GO|PRINT 1|GO|"},
    {"all at once", "USE [master]|CREATE DATABASE S|" + kFiles + "USE S CREATE TABLE T (a int)",
     "--taluGO|use [master]|CREATE DATABASE S ON (FILENAME = 'C:\\D\\s.mdf')|GO|"
     "USE S|GO|CREATE TABLE T (a int)|GO|"},
};

TEST(ConvertTest, WhatAScriptBecomes) {
  for (const ConvertCase& test : kCases) {
    SCOPED_TRACE(test.What);
    const bool isUtf16 = test.Before.find('\0') < 64;
    const std::string before = isUtf16 ? test.Before : Lines(test.Before);
    const ConvertedFile file = Convert(before, FileKind::Script, {.CodePage = test.CodePage});
    if (test.After.starts_with('!')) {
      EXPECT_EQ(file.LeftBecause, test.After.substr(1));
      EXPECT_FALSE(file.IsChanged());
      continue;
    }
    EXPECT_EQ(file.LeftBecause, "");
    EXPECT_EQ(file.After, test.After == "=" ? before : Lines(test.After));
    const ConvertedFile again = Convert(file.After, FileKind::Script, {.CodePage = test.CodePage});
    EXPECT_EQ(again.After, file.After);
  }
}

TEST(ConvertTest, LettersInCommentsDoNotMatterAndOthersBecomeWhatTheAuthorSays) {
  const std::string script = "--taluGO\r\n-- \xC5\x82\r\nEXEC p N'\xC5\x82'\r\nGO\r\n";
  const ConvertedFile left = Convert(script, FileKind::Script, {});
  ASSERT_EQ(left.Missing.size(), 1U);
  EXPECT_EQ(left.Missing[0].Letter, "\xC5\x82");
  EXPECT_EQ(left.Missing[0].Lines, std::vector{3});
  EXPECT_EQ(left.Missing[0].InComments, 1U);
  EXPECT_EQ(Convert(script, FileKind::Script, {.ReplaceLetters = true}).After,
            "--taluGO\r\n-- ?\r\nEXEC p N'?'\r\nGO\r\n");
  EXPECT_EQ(Convert("--taluGO\r\n/* \xC5\x82 */\r\n", FileKind::Script, {}).After,
            "--taluGO\r\n/* ? */\r\nGO\r\n");
}

TEST(ConvertTest, AScriptBehindOneThatIsReadByLinesIsReadSo) {
  EXPECT_FALSE(Convert("PRINT 1\r\nUSE A;", FileKind::ScriptBehindLines, {}).IsChanged());
  EXPECT_FALSE(Convert("PRINT 1\r\n", FileKind::Configuration, {}).IsChanged());
  EXPECT_EQ(Convert("It's\nit's\n", FileKind::Configuration, {}).After, "It's\r\nit's\r\n");
}

class ConvertFolderTest : public testing::Test {
 protected:
  int RunConvert(const std::vector<std::string>& scripts, const ConvertTarget& target) {
    std::vector<std::filesystem::path> paths;
    for (const std::string& script : scripts) paths.push_back(folder.Path / script);
    std::ostringstream out;
    const int status = ConvertCommand(paths, options, target, out);
    said = Replace(out.str(), folder.Path.string(), "");
    return status;
  }
  std::string Trouble(const std::vector<std::string>& scripts, const ConvertTarget& target) {
    try {
      RunConvert(scripts, target);
    } catch (const std::runtime_error& error) {
      return Replace(error.what(), folder.Path.string(), "");
    }
    return "(none)";
  }

  HostFolder folder;
  ConvertOptions options;
  std::string said;
};

TEST_F(ConvertFolderTest, ShowsADiffWithoutPasswordsAndWhatWasDone) {
  std::string rows;
  for (int i = 1; i < 9; ++i) rows += "PRINT " + std::to_string(i) + "\n";
  folder.Put("a.sql", "CREATE LOGIN L\nWITH PASSWORD = 'secret'\nGO\n" + rows + "GO;\n");
  EXPECT_EQ(RunConvert({"a.sql"}, {}), 0);
  EXPECT_EQ(
      said,
      "--- /a.sql\n+++ /a.sql\n"
      "@@ -1,5 +1,5 @@\n"
      "+--taluGO\n"
      "-CREATE LOGIN L\n"
      "-WITH PASSWORD = '***'\n"
      "+CREATE LOGIN L WITH PASSWORD = '***'\n"
      " GO\n PRINT 1\n PRINT 2\n"
      "@@ -9,4 +9,4 @@\n"
      " PRINT 6\n PRINT 7\n PRINT 8\n"
      "-GO;\n"
      "+GO\n"
      "/a.sql: 12 lines end in CR LF now, GO alone on its line, the directive on top, the name and "
      "what follows in one line\n"
      "nothing is written yet: --in-place does it, convert --to FOLDER elsewhere\n");
}

TEST_F(ConvertFolderTest, TellsWhatItCannotMend) {
  const std::pair<std::string, std::string> cases[] = {
      {"PRINT 'a\nb'\nGO;\n",
       "@@ -1,3 +1,4 @@\n+--taluGO\n PRINT 'a\n b'\n-GO;\n+GO\n/a.sql: 2 lines end in"},
      {"--taluGO\r\nPRINT 1\r\nGO 500\r\nPRINT 2\r\nGO 99999999999\r\nGO 0\r\nGO\r\n",
       "/a.sql: nothing is mended\n"
       "    line 3: GO 500 stays, which does not end its batch: write that out, or loop\n"
       "    line 5: GO 99999999999 stays, which does not end its batch: write that out, or loop\n"
       "    line 6: GO 0 stays, which does not end its batch: write GO, or take both out\n"},
      {"--taluGO\r\nPRINT 'a\r\nGO\r\n'\r\nGO\r\n",
       "    line 3: this GO ends the batch, in the middle of a text or a name\n"},
      {"PRINT 1\r\nGO\r\nPRINT 'a\r\nGO\r\nPRINT 2\r\n",
       "    line 3: what begins here is not closed, so all that follows is a part of it\n"}};
  for (const auto& [script, account] : cases) {
    folder.Put("a.sql", script);
    EXPECT_EQ(RunConvert({"a.sql"}, {}), 0);
    EXPECT_NE(said.find(account), std::string::npos) << said;
  }
}

TEST_F(ConvertFolderTest, ADiffHidesPasswordsWhoseWordsAreNotInIt) {
  for (const char* const batch :
       {"/*\r\nit's\r\n*/\r\nEXEC sp_addlogin 'L',\r\n'secret',\r\n'master'\r\n, 'x'\r\nGO;\r\n",
        "CREATE LOGIN L WITH PASSWORD =\r\n\r\n'secret',\r\nCHECK_POLICY\r\n= OFF\r\nGO;\r\n",
        "EXEC sp_addlogin 'L', 'a\r\nsecret'\r\n/*\r\nPASSWORD = 'secret'\r\n*/\r\nGO;\r\n"}) {
    folder.Put("a.sql", std::string("--taluGO\r\nPRINT '\r\n'\r\n") + batch);
    EXPECT_EQ(RunConvert({"a.sql"}, {}), 0);
    EXPECT_EQ(said.find("secret"), std::string::npos) << said;
    EXPECT_NE(said.find("-GO;\n+GO\n"), std::string::npos) << said;
  }
}

TEST_F(ConvertFolderTest, NothingIsOverwritten) {
  folder.Put("in/a.sql", "PRINT 1");
  folder.Put("in/b.SQL", "--taluGO\r\n");
  folder.Put("in/c.txt", "x");
  folder.Put("d/a.sql", "PRINT 2");
  const ConvertTarget to{.Folder = folder.Path / "out/deep"};
  EXPECT_EQ(RunConvert({"in"}, {.Folder = to.Folder, .DryRun = true}), 0);
  EXPECT_FALSE(std::filesystem::exists(folder.Path / "out"));
  EXPECT_EQ(RunConvert({"in"}, to), 0);
  EXPECT_EQ(folder.Get("out/deep/a.sql"), "--taluGO\r\nPRINT 1\r\nGO\r\n");
  EXPECT_EQ(folder.Get("out/deep/b.SQL"), "--taluGO\r\n");
  EXPECT_EQ(folder.Get("out/deep/c.txt"), "(none)");
  EXPECT_EQ(RunConvert({"in"}, to), 0) << "the same files are there already";
  EXPECT_EQ(Trouble({"d/a.sql"}, to),
            "/out/deep/a.sql is there already, and it is not overwritten");
  EXPECT_EQ(Trouble({"in/a.sql"}, {.Folder = folder.Path / "in"}),
            "/in/a.sql is there already, and it is not overwritten");
  EXPECT_EQ(Trouble({"in/a.sql", "d/a.sql"}, {.Folder = folder.Path / "other"}),
            "two files would become /other/a.sql");
  folder.Put("D/A.SQL", "PRINT 3");
  EXPECT_EQ(Trouble({"in/a.sql", "D/A.SQL"}, {.Folder = folder.Path / "other"}),
            "two files would become /other/A.SQL");
  EXPECT_EQ(Trouble({"none.sql"}, to), "there is no file /none.sql");
  EXPECT_EQ(Trouble({"out"}, to), "/out has no .sql files");
  EXPECT_FALSE(std::filesystem::exists(folder.Path / "other"));
}

TEST_F(ConvertFolderTest, InPlaceACopyStays) {
  folder.Put("a.sql", "PRINT 1");
  folder.Put("a.sql.bak", "older");
  folder.Put("left.sql", "PRINT N'\xC5\x82'");
  EXPECT_EQ(RunConvert({"a.sql", "left.sql"}, {.InPlace = true}), 1);
  EXPECT_EQ(folder.Get("a.sql"), "--taluGO\r\nPRINT 1\r\nGO\r\n");
  EXPECT_NE(said.find("@@ -1,1 +1,3 @@\n+--taluGO\n PRINT 1\n+GO\n"), std::string::npos) << said;
  EXPECT_EQ(folder.Get("a.sql.bak"), "older");
  EXPECT_EQ(folder.Get("a.sql.bak2"), "PRINT 1");
  EXPECT_EQ(folder.Get("left.sql"), "PRINT N'\xC5\x82'");
  EXPECT_NE(said.find("left as it is: it has letters that code page 1252 lacks\n"
                      "    \"\xC5\x82\" (U+0142), line 1\n"
                      "    code page 1250 has them all"),
            std::string::npos)
      << said;
  EXPECT_EQ(RunConvert({"a.sql"}, {.InPlace = true}), 0);
  EXPECT_EQ(said, "/a.sql: nothing to mend\n");
  EXPECT_EQ(folder.Get("a.sql.bak3"), "(none)");
}

TEST_F(ConvertFolderTest, InPlaceWhatALinkLeadsToChanges) {
  folder.Put("far/a.sql", "PRINT 1");
  std::filesystem::create_symlink("far/a.sql", folder.Path / "b.sql");
  EXPECT_EQ(RunConvert({"b.sql"}, {.InPlace = true}), 0);
  EXPECT_TRUE(std::filesystem::is_symlink(folder.Path / "b.sql"));
  EXPECT_EQ(folder.Get("far/a.sql"), "--taluGO\r\nPRINT 1\r\nGO\r\n");
  EXPECT_EQ(folder.Get("far/a.sql.bak"), "PRINT 1");
  EXPECT_NE(said.find("written: /far/a.sql; as it was: a.sql.bak\n"), std::string::npos) << said;
}

TEST_F(ConvertFolderTest, InPlaceNothingStaysOfWhatFails) {
  // The copy is twice as large as the file, which still fits.
  folder.Put("a.sql", Utf16("--taluGO\r\n-- " + std::string(10000, 'x') + "\r\n"));
  rlimit limit{};
  ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &limit), 0);
  const rlimit small{15000, limit.rlim_max};
  const auto handler = std::signal(SIGXFSZ, SIG_IGN);
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
  const std::string trouble = Trouble({"a.sql"}, {.InPlace = true});
  setrlimit(RLIMIT_FSIZE, &limit);
  std::signal(SIGXFSZ, handler);
  EXPECT_TRUE(trouble.starts_with("/a.sql.bak cannot be written: ")) << trouble;
  EXPECT_EQ(folder.Get("a.sql").size(), 20032U);
  EXPECT_EQ(folder.Get("a.sql.new"), "(none)");
  EXPECT_EQ(folder.Get("a.sql.bak"), "(none)");
}

}  // namespace
}  // namespace talu::packcheck
