// What AppCfg.txt says, when it can be read.

#include <algorithm>
#include <map>

#include "CheckConfiguration.h"
#include "database/TypeScripts.h"
#include "runtime/NamesOnWindows.h"
#include "runtime/TextFunctions.h"

namespace talu::packcheck {
namespace {

/// What comes of a folder's name that Windows makes without its end, as a clause.
std::string LostEnd(std::string_view name, std::string_view key) {
  if (name.find_first_not_of(" .") == std::string_view::npos) return "there is no such folder";
  const std::string made = NormalizedPath("C:\\" + std::string(name)).substr(3);
  const std::string soughtBelow = NormalizedPath("C:\\" + std::string(name) + "\\x");
  if (soughtBelow == "C:\\" + made + "\\x") return "the folder is called " + Shown(made);
  if (key == "AppFolder") {
    return "the folder is called " + Shown(made) +
           ", nothing in it is found, and the installation stops at the location page with "
           "\"Path not found\"";
  }
  return "the folder is called " + Shown(made) +
         ", but the databases' files are to be in one that is not there, and the build fails";
}

}  // namespace

void Configuration::CheckWhatIsThere() {
  const Place file{"AppCfg.txt", 0, ""};
  if (Values("AppTitle").empty()) pack_.Findings.Add("CFG-NO-TITLE", file);
  if (Values("AppFolder").empty()) pack_.Findings.Add("CFG-NO-APPFOLDER", file);
  if (Values("DBFolder").empty()) pack_.Findings.Add("CFG-NO-DBFOLDER", file);
  for (const TypeScripts& scripts : kTypeScripts) {
    if (!Values(scripts.Key).empty()) return;
  }
  pack_.Findings.Add("CFG-NO-SCRIPTS", file);
}

void Configuration::CheckFolderNames() {
  for (const std::string_view key : {"AppFolder", "DBFolder"}) {
    const std::vector<CfgLine> values = Values(key);
    if (values.empty()) continue;
    const std::string_view name = values.front().Text;
    const Place place = values.front().Place();
    if (Contains(name, "\\") || Contains(name, "/") || HasForbiddenCharacter(name)) {
      pack_.Findings.Add("CFG-FOLDER-NAME", place, {Shown(name), ""});
    } else if (IsDeviceName(name)) {
      pack_.Findings.Add("CFG-FOLDER-NAME", place, {Shown(name), ", as it means a device"});
    } else if (name.ends_with(' ') || name.ends_with('.')) {
      pack_.Findings.Add("CFG-FOLDER-END", place, {Shown(name), LostEnd(name, key)});
    } else if (key == "AppFolder" && std::string_view("TA-LU").starts_with(name)) {
      pack_.Findings.Add("CFG-FOLDER-TALU", place, {std::string(name)});
    }
  }
}

void Configuration::CheckScriptLists() {
  for (const TypeScripts& scripts : kTypeScripts) {
    std::map<std::string, int> listed;
    for (const CfgLine& line : Values(scripts.Key)) {
      const std::string file = UCase(NormalizedPath("C:\\" + std::string(line.Text)));
      const auto [earlier, isNew] = listed.emplace(file, line.Number);
      if (isNew) continue;
      pack_.Findings.Add("CFG-SCRIPT-TWICE", line.Place(), {std::to_string(earlier->second)});
    }
  }
}

void Configuration::CheckBackupCount() {
  const std::size_t count = Values("DBSript").size();
  std::size_t longest = 0;
  for (const auto& [type, withArticle, folder, key] : kTypeScripts) {
    const std::size_t scripts = Values(key).size();
    longest = std::max(longest, scripts);
    if (scripts <= count) continue;
    pack_.Findings.Add("CFG-DBSRIPT-FEW", PlaceOf(key),
                       {std::to_string(count), std::string(key), std::to_string(scripts)});
  }
  if (count > longest) {
    pack_.Findings.Add("CFG-DBSRIPT-MANY", PlaceOf("DBSript"),
                       {std::to_string(count), std::to_string(longest)});
  }
}

}  // namespace talu::packcheck
