// Every finding, with the smallest pack that shows it and what a plan of that pack does; and the
// manual's own pack, which has none.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

#include "CheckCases.h"
#include "CheckCommand.h"
#include "Rules.h"

namespace talu {
namespace {

namespace fs = std::filesystem;

class CheckTest : public testing::Test {
 protected:
  CheckTest() {
    std::string name = (fs::path(testing::TempDir()) / "checkXXXXXX").string();
    folder = mkdtemp(name.data());
  }
  ~CheckTest() override { fs::remove_all(folder); }

  void MakePack(Files files) {
    fs::remove_all(folder);
    for (const auto& [path, bytes] : files) {
      if (bytes == "-") continue;
      fs::create_directories((folder / path).parent_path());
      std::ofstream(folder / path, std::ios::binary) << bytes;
    }
  }
  std::string Check(bool json, int status = -1) {
    std::ostringstream out;
    const int ended = CheckCommand({folder, json}, out);
    if (status >= 0) {
      EXPECT_EQ(ended, status) << out.str();
    }
    return out.str();
  }
  /// The codes found, each once; the one looked for is first.
  std::string Codes(const std::string& first) {
    const std::string json = Check(true);
    const std::string mark = "\"code\":\"";
    std::set<std::string> found;
    for (std::size_t at = json.find(mark); at != std::string::npos; at = json.find(mark, at)) {
      at += mark.size();
      found.insert(json.substr(at, json.find('"', at) - at));
    }
    std::string codes = found.erase(first) == 1 ? first : "(no " + first + ")";
    for (const std::string& other : found) codes += " " + other;
    return codes;
  }
  /// What the plan did, an event a line: its kind, its values, its error; and why it stopped.
  std::string Plan(const CheckCase& test) {
    PlanOptions options;
    options.Pack = folder;
    options.Mode = test.Mode;
    options.Type = test.Type;
    options.ExitCodes = {{"My.exe", 5}};
    std::string journal;
    try {
      const PlannedRun run(options, [&journal](const PlannedRun&, const JournalEvent& event) {
        journal += event.Kind;
        for (const auto& [name, value] : event.Fields) journal += " " + event.Text(name);
        journal += (event.Error ? " " + event.Error->Description : "") + "\n";
      });
      return journal + run.Stop();
    } catch (const std::exception& error) {
      return error.what();
    }
  }

  fs::path folder;
};

TEST_F(CheckTest, EachFindingIsWhatAPlanDoes) {
  std::set<std::string> proved;
  for (const CheckCase& test : CheckCases()) {
    SCOPED_TRACE(test.Codes);
    Files files = test.Pack;
    files.merge(PlainPack());
    MakePack(files);
    const std::string codes = test.Codes;
    const std::string code = codes.substr(0, codes.find(' '));
    EXPECT_EQ(Codes(code), codes);
    proved.insert(code);
    const std::string journal = Plan(test);
    const bool absent = test.Proof.starts_with('!');
    EXPECT_EQ(journal.find(test.Proof.substr(absent ? 1 : 0)) == std::string::npos, absent)
        << test.Proof << "\n"
        << journal;
  }
  for (const RuleGroup& group : AllRules()) {
    for (const Rule& rule : group.Rules) {
      EXPECT_TRUE(proved.contains(std::string(rule.Code))) << rule.Code << " is not proved";
    }
  }
}

}  // namespace
}  // namespace talu
