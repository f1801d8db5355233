#include <gtest/gtest.h>
#include <stdlib.h>

#include <fstream>

#include "Plan.h"

namespace talu {
namespace {

std::string Block(const std::string& key, const std::string& lines) {
  return key + "\r\n{\r\n" + lines + "}\r\n";
}

/// A pack in a host folder of its own, removed at the end.
class PlanTest : public testing::Test {
 protected:
  PlanTest() {
    std::string name = (std::filesystem::temp_directory_path() / "plan.XXXXXX").string();
    options.Pack = mkdtemp(name.data());
    Put("AppCfg.txt", Block("AppTitle", "Sales Desk\r\n") + Block("AppFolder", "App\r\n") +
                          Block("DBFolder", "Data\r\n") + Block("FreshDBSript", "f.sql\r\n"));
    Put("SQLScript/Fresh/f.sql",
        "--taluGO\r\n\r\nCREATE TABLE T (A INT)\r\nGO\r\nSELECT\r\n1\r\nGO\r\n");
  }
  ~PlanTest() override { std::filesystem::remove_all(options.Pack); }

  void Put(const std::string& path, const std::string& bytes) {
    std::filesystem::create_directories((options.Pack / path).parent_path());
    std::ofstream(options.Pack / path, std::ios::binary) << bytes;
  }

  PlanOptions options;
};

TEST_F(PlanTest, RunsToFinish) {
  const auto run = Plan(options);
  EXPECT_EQ(run->Stop(), "");
  EXPECT_EQ(run->Machine.Journal.Events().back().Kind, "end");
  EXPECT_EQ(run->Machine.Journal.Texts("sql", "text"),
            (std::vector<std::string>{"\r\nCREATE TABLE T (A INT)", "\r\nSELECT\r\n1"}));
}

}  // namespace
}  // namespace talu
