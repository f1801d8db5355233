#include "PackFolder.h"
#include "Passwords.h"
#include "PlanArguments.h"

namespace talu::packcheck {
namespace {

class PlanArgumentsTest : public testing::Test {
 protected:
  PlanArgumentsTest() {
    given.Pack = folder.Path.string();
    given.Type = "upgrade";
    given.Mode = "client";
  }
  std::string Error() {
    try {
      ReadPlanArguments(given);
    } catch (const std::runtime_error& error) {
      return error.what();
    }
    return "(none)";
  }

  HostFolder folder;
  PlanArguments given;
};

TEST_F(PlanArgumentsTest, AreRead) {
  folder.Put("folders.txt", "C:\\Users\\J\xC3\xB6rg\\Desktop\\\r\n\r\nC:\\Start Menu");
  given.SpecialFolders = (folder.Path / "folders.txt").string();
  given.Now = "2012-02-29 23:59";
  given.PackPath = "E:\\";
  given.InstallPath = "F:\\";
  given.OldPath = "C:\\Old\\";
  given.FailSql = {"x=1", "A='=5:b", "B=-7:why = not"};
  given.FailRequest = "12=70";
  given.Exits = {"a=b.exe=-1"};
  const PlanOptions run = ReadPlanArguments(given).Run;
  EXPECT_EQ(run.SpecialFolders,
            (std::vector<std::string>{"C:\\Users\\J\u00f6rg\\Desktop", "C:\\Start Menu"}));
  EXPECT_EQ(run.Now.Day, 29);
  EXPECT_EQ(run.Now.Minute, 59);
  EXPECT_EQ(run.PackPath, "E:");
  EXPECT_EQ(run.InstallPath, "F:\\");
  EXPECT_EQ(run.OldPath, "C:\\Old");
  EXPECT_EQ(run.FailSql[0].Text, "x=1");
  EXPECT_EQ(run.FailSql[1].Text, "A='");
  EXPECT_EQ(run.FailSql[1].Error.Number, 5);
  EXPECT_EQ(run.FailSql[2].Error.Number, -7);
  EXPECT_EQ(run.FailSql[2].Error.Description, "why = not");
  EXPECT_EQ(run.FailRequest, 12);
  EXPECT_EQ(run.FailRequestError, 70);
  EXPECT_EQ(run.ExitCodes.at("a=b.exe"), -1);
}

TEST_F(PlanArgumentsTest, FaultsAreToldByOption) {
  using Argument = std::string PlanArguments::*;
  struct Case {
    Argument Field;
    const char* Text;
    const char* Begin;
  };
  const Case cases[] = {
      {&PlanArguments::Pack, "/nowhere", "PACK: "},
      {&PlanArguments::Type, "Fresh", "--type: \"Fresh\" is not"},
      {&PlanArguments::Mode, "", "--mode: "},
      {&PlanArguments::Now, "2011-02-29 10:00", "--now: "},
      {&PlanArguments::Now, "2012-02-28 24:00", "--now: "},
      {&PlanArguments::Now, "2012-02-28 10:00x", "--now: "},
      {&PlanArguments::InstallPath, "\\\\server\\share", "--install-path: "},
      {&PlanArguments::PackPath, "D:Pack", "--pack-path: "},
      {&PlanArguments::Disk, "/nowhere", "--disk: "},
      {&PlanArguments::Compare, "/nowhere", "--compare: "},
      {&PlanArguments::FailRequest, "0", "--fail-request: "},
      {&PlanArguments::FailRequest, "99999999999", "--fail-request: "},
      {&PlanArguments::SpecialFolders, "/nowhere", "--special-folders: cannot read /nowhere"},
  };
  for (const Case& test : cases) {
    const std::string before = std::exchange(given.*test.Field, test.Text);
    EXPECT_TRUE(Error().starts_with(test.Begin)) << test.Text << ": " << Error();
    given.*test.Field = before;
  }
  given.Exits = {"a.exe"};
  EXPECT_EQ(Error(), "--exit: \"a.exe\" is not NAME=CODE");
  given.Exits.clear();
  given.Type = "fresh";
  given.OldPath = "C:\\Old";
  EXPECT_EQ(Error(), "--old-path goes with --type upgrade only");
  given.OldPath.clear();
  given.Compare = given.Pack;
  EXPECT_EQ(Error(), "--compare wants --install-path with a folder of C:");
}

TEST(Passwords, AreHiddenWhereTheFormGivesThemAway) {
  const std::pair<const char*, const char*> cases[] = {
      {"uid=sa;pwd=a b;database=M", "uid=sa;pwd=***;database=M"},
      {"DSN=x; UID=y; PWD=z", "DSN=x; UID=y; PWD=***"},
      {"a text near 'PASSWORD = ''c'''", "a text near 'PASSWORD = ''***'''"},
      {"[Password] int, password", "[Password] int, password"},
      {"C:\\Pass\\It's here", "C:\\Pass\\It's here"},
      {"PsWord:a;b", "PsWord:***"},
      {"SystemDSN:d,n,b,u,p,more", "SystemDSN:d,n,b,u,***"},
      {"SystemDSN:d,n,b", "SystemDSN:d,n,b"},
  };
  for (const auto& [text, hidden] : cases) EXPECT_EQ(WithoutPasswords(text), hidden);
}

}  // namespace
}  // namespace talu::packcheck
