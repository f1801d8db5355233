// What fix mends in a pack, and what the findings say about it.

#include <algorithm>
#include <map>
#include <set>
#include <sstream>

#include "CheckCases.h"
#include "CheckCommand.h"
#include "ConvertCommand.h"
#include "PackFolder.h"
#include "runtime/TextFunctions.h"

namespace talu::packcheck {
namespace {

/// The findings of a pack, each with its place, and whether fix mends it.
std::map<std::string, bool> Found(const std::filesystem::path& pack) {
  std::ostringstream out;
  CheckCommand({.Pack = pack, .Json = true}, out);
  std::map<std::string, bool> found;
  for (const std::string& line : Split(out.str(), '\n')) {
    const std::size_t code = line.find("\"code\"");
    if (code == std::string::npos) continue;
    found[line.substr(code, line.find(',', code) - code)] |=
        line.find("\"fix\":true") != std::string::npos;
  }
  return found;
}

// A finding says whether fix mends it: then it is gone, and all the others stay.
TEST(FixTest, MendsWhatTheFindingsSay) {
  std::set<std::string> mended;
  for (const CheckCase& test : CheckCases()) {
    SCOPED_TRACE(test.Codes);
    const HostFolder pack;
    Files files = test.Pack;
    files.merge(PlainPack());
    for (const auto& [path, bytes] : files) {
      if (bytes != "-") pack.Put(path, bytes);
    }
    const auto before = Found(pack.Path);
    std::ostringstream out;
    if (!pack.Get("AppCfg.txt").starts_with("(none)")) {
      FixCommand(pack.Path, {}, {.InPlace = true}, out);
    }
    const auto after = Found(pack.Path);
    for (const auto& [code, fixed] : before) {
      if (fixed) mended.insert(code.substr(8, code.size() - 9));
      EXPECT_EQ(after.contains(code), !fixed) << code << "\n" << out.str();
    }
    for (const auto& [code, fixed] : after) EXPECT_FALSE(fixed) << code << " is left";
  }
  const std::set<std::string> expected = {
      "CFG-ENCODING",     "CFG-LINE-ENDS",      "SQL-UTF16",   "SQL-UTF8",       "SQL-LINE-ENDS",
      "SQL-NO-DIRECTIVE", "SQL-LATE-DIRECTIVE", "SQL-LAST-GO", "SQL-GO-COMMENT", "SQL-GO-TAIL",
      "SQL-CREATE-CASE",  "SQL-CREATE-NAME",    "SQL-DB-MDF",  "SQL-BACKUP-NAME"};
  EXPECT_TRUE(std::ranges::includes(mended, expected)) << testing::PrintToString(mended);
}

TEST(FixTest, WhatStaysFurtherDownIsNotToldAsMended) {
  const HostFolder pack;
  for (const auto& [path, bytes] : PlainPack()) pack.Put(path, bytes);
  pack.Put("SQLScript/Fresh/A.sql",
           "--taluGO\r\nUSE Sales\r\nPRINT 1\r\nGO 3\r\n:setvar a b\r\nGO\r\n");
  const auto found = Found(pack.Path);
  EXPECT_TRUE(found.at("\"code\":\"SQL-GO-TAIL\""));
  EXPECT_FALSE(found.at("\"code\":\"SQL-SQLCMD\""));
}

TEST(FixTest, AScriptOfTwoTypesIsMendedOnce) {
  const HostFolder pack;
  for (const auto& [path, bytes] : PlainPack()) pack.Put(path, bytes);
  pack.Put("AppCfg.txt", pack.Get("AppCfg.txt") + "DemoDBSript\r\n{\r\n..\\Fresh\\A.sql\r\n}\r\n");
  pack.Put("SQLScript/Demo/B.sql", "");
  pack.Put("SQLScript/Fresh/A.sql", "PRINT 1\r\nGO;\r\n");
  std::ostringstream out;
  EXPECT_EQ(FixCommand(pack.Path, {}, {.InPlace = true}, out), 0);
  EXPECT_EQ(pack.Get("SQLScript/Fresh/A.sql"), "--taluGO\r\nPRINT 1\r\nGO\r\n");
  EXPECT_EQ(pack.Get("SQLScript/Fresh/A.sql.bak2"), "(none)");
}

TEST(FixTest, ToldWithTheFindingAndDoneWithACopy) {
  const HostFolder pack;
  for (const auto& [path, bytes] : PlainPack()) pack.Put(path, Replace(bytes, "\r\n", "\n"));
  pack.Put("SQLScript/Fresh/A.sql", "\n\nUSE Sales;\nPRINT 1\n");
  std::ostringstream checked;
  EXPECT_EQ(CheckCommand({.Pack = pack.Path}, checked), 2);
  EXPECT_NE(checked.str().find("(CR LF). (packcheck fix does it.)\n"), std::string::npos)
      << checked.str();
  std::ostringstream out;
  EXPECT_EQ(FixCommand(pack.Path, {}, {}, out), 0);
  EXPECT_EQ(pack.Get("SQLScript/Fresh/A.sql"), "\n\nUSE Sales;\nPRINT 1\n");
  EXPECT_NE(out.str().find("packcheck check would then find 0 errors, "), std::string::npos)
      << out.str();
  EXPECT_EQ(FixCommand(pack.Path, {}, {.InPlace = true}, out), 0);
  EXPECT_EQ(pack.Get("SQLScript/Fresh/A.sql"),
            "--taluGO\r\n\r\n\r\nUSE Sales\r\nGO\r\nPRINT 1\r\nGO\r\n");
  EXPECT_EQ(pack.Get("SQLScript/Fresh/A.sql.bak"), "\n\nUSE Sales;\nPRINT 1\n");
  EXPECT_TRUE(pack.Get("AppCfg.txt").starts_with("AppTitle\r\n{\r\n"));
}

}  // namespace
}  // namespace talu::packcheck
