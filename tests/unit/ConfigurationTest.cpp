#include "Pack.h"

namespace talu {
namespace {

using ConfigurationTest = PackTest;

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
