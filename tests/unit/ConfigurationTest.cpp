#include "Pack.h"

namespace talu {
namespace {

using ConfigurationTest = PackTest;

TEST_F(ConfigurationTest, ReadersTakeBlocksByTheReversedPrefixTest) {
  struct Case {
    const char* what;
    std::string file;
    const char* key;
    int count;
    Texts values;  // from index 1
  };
  const Case cases[] = {
      {"a plain block", Block("AppTitle", "Desk"), "AppTitle", 1, {"Desk", ""}},
      {"a blank behind the key", Block("AppTitle ", "Desk"), "AppTitle", 0, {""}},
      {"the key in lower case", Block("apptitle", "Desk"), "AppTitle", 0, {""}},
      {"a line that the key begins with", Block("App", "Desk"), "AppTitle", 1, {"Desk"}},
      {"a longer line", Block("FreshDBSript", "a.sql"), "DBSript", 0, {""}},
      {"a blank value line", Block("AppTitle", "A||B"), "AppTitle", 2, {"A", "", "B"}},
      {"a value of blanks", Block("AppTitle", "  |B"), "AppTitle", 1, {"  ", "B"}},
      {"a brace as a value", Block("AppTitle", "{|B"), "AppTitle", 2, {"{", "B"}},
      {"a blank line before another block",
       "\r\n" + Block("Other", "X") + Block("AppTitle", "Desk"),
       "AppTitle",
       1,
       {"X", "Desk"}},
      {"two blocks of one key",
       Block("AppTitle", "A") + Block("AppTitle", "B"),
       "AppTitle",
       2,
       {"A", "B"}},
      {"lines that end in LF alone", "AppTitle\n{\nDesk\n}\n", "AppTitle", 0, {""}},
      {"CR alone, no end at the last line", "AppTitle\r{\rDesk\r}", "AppTitle", 1, {"Desk"}},
      {"a block that is not closed", "AppTitle\r\n{\r\nDesk", "AppTitle", 1, {"Desk"}},
      {"an empty file", "", "AppTitle", 0, {""}},
  };
  for (const Case& test : cases) {
    SCOPED_TRACE(test.what);
    Put("AppCfg.txt", test.file);
    EXPECT_EQ(wizard.GetCfgCount(test.key), test.count);
    EXPECT_EQ(wizard.GetCfgValue(test.key, 0), "");
    for (int i = 1; i <= std::ssize(test.values); ++i) {
      EXPECT_EQ(wizard.GetCfgValue(test.key, i), test.values[static_cast<std::size_t>(i - 1)]);
    }
  }
}

TEST_F(ConfigurationTest, PastTheLast16BitLineBothReadersOverflow) {
  const std::string most = Replace(std::string(32766, '|'), "|", "x|") + "x";
  Put("AppCfg.txt", Block("AppTitle", most));
  EXPECT_EQ(wizard.GetCfgCount("AppTitle"), 32767);
  EXPECT_EQ(wizard.GetCfgValue("AppTitle", 32767), "x");
  Put("AppCfg.txt", Block("AppTitle", most) + Block("AppTitle", "one more"));
  for (const bool counting : {true, false}) {
    try {
      counting ? void(wizard.GetCfgCount("AppTitle")) : void(wizard.GetCfgValue("AppTitle", 1));
      ADD_FAILURE() << "no overflow";
    } catch (const RuntimeError& error) {
      EXPECT_EQ(error.Number, error::kOverflow);
    }
  }
  EXPECT_EQ(wizard.TextFiles.FreeFile(), 1) << "a file was left open";
}

TEST_F(ConfigurationTest, ReadingThatFailsIsAnErrorAndLeavesNothingOpen) {
  machine.Journal.FailRequest(machine.Journal.Requests() + 2, RuntimeError(error::kDeviceIO));
  EXPECT_THROW(wizard.GetCfgCount("AppTitle"), RuntimeError);
  EXPECT_EQ(wizard.TextFiles.FreeFile(), 1);
}

TEST_F(ConfigurationTest, WithoutTheFileTheProgramEndsWithTheErrorBox) {
  machine.Disk.DeleteFile("D:\\Pack\\AppCfg.txt", false);
  Start();
  EXPECT_TRUE(windows.Ended());
  EXPECT_EQ(windows.Messages(), Texts{"Run-time error '53':\r\n\r\nFile not found"});
}

TEST_F(ConfigurationTest, StartUpKeepsTitleAndPicture) {
  Start();
  EXPECT_EQ(wizard.State.AppTitle, "Sales Desk");
  EXPECT_EQ(wizard.State.BackgroundPicturePath, "");
  EXPECT_EQ(windows.VisibleForm(), "FrmType");

  Put("Skin\\WindowBack.jpg", "\xFF\xD8\xFF");
  Wizard second(machine.Parts);
  windows.Run([&] { Main(second); });
  EXPECT_EQ(second.State.BackgroundPicturePath, "D:\\Pack\\Skin\\WindowBack.jpg");
  EXPECT_NE(windows.Shown("ImgBack")->Picture, nullptr);
}

}  // namespace
}  // namespace talu
