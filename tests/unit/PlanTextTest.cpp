#include <gtest/gtest.h>

#include "uninstall/PlanText.h"

namespace talu {
namespace {

using Kind = Step::Kind;
using Fate = Verdict::Fate;

TEST(PlanText, SaysFirstWhatIsLeftAndCountsWhatMayBeThousands) {
  std::vector<Step> steps;
  std::vector<Verdict> verdicts;
  const auto add = [&](Kind kind, const std::string& name, Fate fate, const std::string& why) {
    steps.emplace_back().What = kind;
    steps.back().Name = name;
    verdicts.push_back({fate, why});
  };
  add(Kind::Shortcut, "C:\\a.lnk", Fate::Goes, "");
  add(Kind::File, "C:\\one", Fate::Goes, "");
  add(Kind::File, "C:\\two", Fate::Goes, "");
  add(Kind::File, "C:\\mine", Fate::Stays, "It was changed.");
  add(Kind::Folder, "C:\\app", Fate::Goes, "");
  add(Kind::DataSource, "Books", Fate::Left, "Permission denied");
  EXPECT_EQ(PlanText(steps, verdicts, "Gone:"),
            "Left, because it cannot be removed now:\rdata source Books: Permission denied\r\r"
            "Gone:\r2 files\r1 folder\rshortcut C:\\a.lnk\r\r"
            "Stays:\rfile C:\\mine: It was changed.");
  verdicts.resize(1);
  EXPECT_EQ(PlanText(steps, verdicts, "Gone:"), "Gone:\rshortcut C:\\a.lnk");
  EXPECT_EQ(PlanText(steps, {}, "Gone:"), "");
  steps.assign(1000, steps[0]);
  verdicts.assign(1000, verdicts[0]);
  EXPECT_TRUE(PlanText(steps, verdicts, "Gone:")
                  .ends_with("\rand 800 more: the command line lists all of them"));
}

}  // namespace
}  // namespace talu
