// Every finding, with the smallest pack that shows it and what a plan of that pack does; and the
// manual's own pack, which has none.

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <set>
#include <sstream>

#include "CheckCases.h"
#include "CheckCommand.h"
#include "PackFolder.h"
#include "Rules.h"
#include "runtime/TextFunctions.h"

namespace talu::packcheck {
namespace {

class CheckTest : public testing::Test {
 protected:
  void MakePack(const Files& files) {
    std::filesystem::remove_all(pack.Path);
    for (const auto& [path, bytes] : files)
      if (bytes != "-") pack.Put(path, bytes);
  }
  std::string Check(bool json, int status = -1) {
    std::ostringstream out;
    const int ended = CheckCommand({.Pack = pack.Path, .CodePage = codePage, .Json = json}, out);
    EXPECT_TRUE(status < 0 || ended == status) << out.str();
    return out.str();
  }
  /// The codes found, each once; the one looked for is first.
  std::string Codes(const std::string& first) {
    std::set<std::string> found;
    std::istringstream json(Check(true));
    for (std::string line; std::getline(json, line);)
      found.insert(nlohmann::json::parse(line)["code"].get<std::string>());
    if (!first.empty() && found.erase(first) == 0) return "no " + first + "\n" + Check(false);
    std::string codes = first;
    for (const std::string& other : found) codes += (codes.empty() ? "" : " ") + other;
    return codes;
  }
  /// What the plan did, an event a line: its kind, its values, its error; and why it stopped.
  std::string Plan(const CheckCase& test) {
    PlanOptions options;
    options.Pack = pack.Path;
    options.Mode = test.Mode;
    options.Type = test.Type;
    options.ExitCodes = {{"My.exe", 5}};
    options.Databases = {"Old"};
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

  HostFolder pack;
  int codePage = 1252;
};

TEST_F(CheckTest, EachFindingIsWhatAPlanDoes) {
  std::set<std::string> proved;
  for (const CheckCase& test : CheckCases()) {
    SCOPED_TRACE(test.Codes + " " + test.Mistake);
    Files files = test.Pack;
    files.merge(PlainPack());
    MakePack(files);
    const std::string code = test.Codes.substr(0, test.Codes.find(' '));
    EXPECT_EQ(Codes(code), test.Codes);
    if (!test.Says.empty()) {
      EXPECT_NE(Check(false).find(test.Says), std::string::npos) << test.Says << Check(false);
    }
    if (test.Proof.empty()) continue;
    proved.insert(code);
    const std::string journal = Plan(test);
    const bool absent = test.Proof.starts_with('!');
    EXPECT_EQ(journal.find(test.Proof.substr(absent ? 1 : 0)) == std::string::npos, absent)
        << test.Proof << "\n"
        << journal;
  }
  for (const RuleGroup& group : kRuleGroups) {
    for (const Rule& rule : group.Rules) {
      EXPECT_TRUE(proved.contains(std::string(rule.Code))) << rule.Code << " is not proved";
    }
  }
}

// The second byte of the script's name is a backslash.
TEST_F(CheckTest, ReadsThePackInTheMachinesCodePage) {
  Files files = PlainPack();
  files["AppCfg.txt"] = Replace(files["AppCfg.txt"], "A.sql", "\x95\x5C.sql");
  auto script = files.extract("SQLScript/Fresh/A.sql");
  script.key() = "SQLScript/Fresh/\u8868.sql";
  script.mapped() += "PRINT '\u8868'\r\nGO\r\n";
  files.insert(std::move(script));
  MakePack(files);
  EXPECT_EQ(Codes("SQL-NOT-THERE"), "SQL-NOT-THERE SQL-NOT-LISTED");
  codePage = 932;
  EXPECT_EQ(Codes("SQL-UTF8"), "SQL-UTF8");
  codePage = 65001;
  files["AppCfg.txt"] = Replace(files["AppCfg.txt"], "\x95\x5C", "\u8868");
  MakePack(files);
  EXPECT_EQ(Check(false, 0), "0 errors, 0 warnings, 0 notes\n");
}

TEST_F(CheckTest, FindingsAreToldWithPlaceWeightAndStatus) {
  Files files = PlainPack();
  MakePack(files);
  EXPECT_EQ(Check(false, 0), "0 errors, 0 warnings, 0 notes\n");

  files["AppCfg.txt"] += "AddOns\r\n{\r\nb.bat\r\n";
  MakePack(files);
  const std::string json = Check(true, 1);
  EXPECT_NE(json.find(R"("file":"AppCfg.txt","line":23,"code":"ADD-KIND","severity":"warning",)"
                      R"("will":"\"b.bat\" contains neither .exe nor .msi, so nothing is run.")"),
            std::string::npos)
      << json;

  // One kind is listed twenty times a file; lines count as an editor counts them.
  files["AppCfg.txt"] += "}\r\n";
  std::string script = "--taluLineByLine\r\n\r\n";
  for (int i = 0; i < 30; ++i) script += "PRINT N'\xFC" + std::to_string(i) + "',\r\n";
  files["SQLScript/Fresh/A.sql"] = script;
  files["packcheck.ignore"] = "# why\nadd-kind | appcfg.txt | b.bat | run by hand later\n";
  MakePack(files);
  const std::string text = Check(false, 2);
  EXPECT_TRUE(text.starts_with("AppCfg.txt:23: warning ADD-KIND") ||
              text.starts_with("SQLScript\\Fresh\\A.sql:3: error SQL-LINE-SPLIT"))
      << text;
  EXPECT_NE(text.find("(and 10 more like this in the file)"), std::string::npos) << text;
  EXPECT_TRUE(text.ends_with("30 errors, 0 warnings, 0 notes; 1 finding accepted\n")) << text;
  EXPECT_NE(Check(true).find(R"("accepted":"run by hand later")"), std::string::npos);

  std::ostringstream out;
  ExplainCommand("add-kind", out);
  EXPECT_TRUE(out.str().starts_with("#### ADD-KIND")) << out.str();
}

/// The fenced parts of the manual: what stands behind the fence, and the lines.
std::vector<std::pair<std::string, std::vector<std::string>>> Fences(std::istream& manual) {
  std::vector<std::pair<std::string, std::vector<std::string>>> fences;
  bool inside = false;
  for (std::string line; std::getline(manual, line);) {
    if (line.starts_with("```")) {
      inside = !inside;
      if (inside) fences.push_back({line.substr(3), {}});
    } else if (inside) {
      fences.back().second.push_back(line);
    }
  }
  return fences;
}

TEST_F(CheckTest, TheManualsPackIsCleanAndItsFindingsAreThese) {
  std::ifstream manual(TALU_MANUAL);
  Files files;
  const auto path = [](const std::string& text) { return Replace(text, "\\", "/"); };
  for (const auto& [name, lines] : Fences(manual)) {
    for (const std::string& line : lines) {
      const std::size_t equals = line.find(" = ");
      if (name == "files") {
        const bool component = line.ends_with(".ocx") || line.ends_with(".dll");
        files[path(line)] = component ? Library("DllRegisterServer") : "x";
      } else if (name == "copies") {
        files[path(line.substr(0, equals))] = files.at(path(line.substr(equals + 3)));
      } else if (name.find('.') != std::string::npos) {
        files[path(name)] += line + "\r\n";
      }
    }
  }
  MakePack(files);
  const std::string text = Check(false, 0);
  EXPECT_TRUE(text.ends_with("0 errors, 0 warnings, 4 notes; 1 finding accepted\n")) << text;
  for (const InstallType type : {InstallType::Fresh, InstallType::Demo, InstallType::Upgrade}) {
    PlanOptions options;
    options.Pack = pack.Path;
    options.Type = type;
    options.Databases = {"Library_Books"};
    options.AcceptAll = true;
    EXPECT_TRUE(PlannedRun(options).Finished());
  }

  manual.clear();
  manual.seekg(0);
  const std::string whole((std::istreambuf_iterator<char>(manual)), {});
  std::ostringstream findings;
  ExplainCommand("all", findings);
  EXPECT_TRUE(whole.ends_with(findings.str()))
      << "docs/pack-format.md must end with what packcheck check --explain all prints";
}

}  // namespace
}  // namespace talu::packcheck
